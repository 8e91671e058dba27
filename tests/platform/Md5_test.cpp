#include "platform/Md5.h"

#include <gtest/gtest.h>

#include <string>

namespace orvex::platform {
namespace {

TEST(Md5, KnownDigestsInLowerCaseHexAlsoPiecewise) {
    EXPECT_EQ(Md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Md5Hex("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Md5Hex(std::string("\0\xff", 2)), "d07d34efac6328007ad67c7e0a985e00");
    const std::string text(100000, 'x');
    Md5 md5;
    for (std::size_t at = 0; at < text.size(); at += 4096)
        md5.update(text.data() + at, std::min<std::size_t>(4096, text.size() - at));
    EXPECT_EQ(md5.hexDigest(), Md5Hex(text));
}

}  // namespace
}  // namespace orvex::platform
