#include "platform/Failure.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(Failure, CarriesNumberAndStandardTextAndErrnoMapsToClassicNumbers) {
    EXPECT_STREQ(Failure(53).what(), "File not found");
    EXPECT_EQ(StandardDescription(12345), "Application-defined or object-defined error");
    EXPECT_EQ(FailureFromErrno(ENOENT, true), 76);
    EXPECT_EQ(FailureFromErrno(ENOSPC), 61);
}

}  // namespace
}  // namespace orvex
