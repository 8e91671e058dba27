// Md5_test.cpp: known digests; the chunked file digest is checked against them by the file scan
// tests.
#include "platform/Md5.h"

#include <gtest/gtest.h>

#include <string>

namespace orvex::platform {
namespace {

TEST(Md5, KnownDigestsInLowerCaseHex) {
    EXPECT_EQ(Md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Md5Hex("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Md5Hex(std::string("\0\xff", 2)), "d07d34efac6328007ad67c7e0a985e00");
}

}  // namespace
}  // namespace orvex::platform
