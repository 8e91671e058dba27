#include "platform/Failure.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace orvex {
namespace {

TEST(Failure, CarriesNumberAndStandardText) {
    Failure f(53);
    EXPECT_EQ(f.number(), 53);
    EXPECT_STREQ(f.what(), "File not found");
    EXPECT_EQ(StandardDescription(12345), "Application-defined or object-defined error");
}

TEST(Failure, ErrnoMapsToClassicNumbers) {
    EXPECT_EQ(FailureFromErrno(ENOENT), 53);
    EXPECT_EQ(FailureFromErrno(ENOENT, true), 76);
    EXPECT_EQ(FailureFromErrno(EACCES), 75);
    EXPECT_EQ(FailureFromErrno(EBUSY), 70);
    EXPECT_EQ(FailureFromErrno(ENOSPC), 61);
}

}  // namespace
}  // namespace orvex
