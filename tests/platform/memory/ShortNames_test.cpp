// ShortNames_test.cpp: 8.3 names come out as Windows makes them.
#include <gtest/gtest.h>

#include <set>

#include "platform/memory/ShortNames.h"

namespace orvex::platform::memory {
namespace {

std::string Short(std::string_view name, const std::set<std::string>& taken = {}) {
    return MakeShortName(name, [&](std::string_view c) { return taken.count(std::string(c)) > 0; });
}

TEST(ShortNames, NamesThatFitEightDotThreeGetNone) {
    EXPECT_TRUE(IsShortName("README.TXT"));
    EXPECT_TRUE(IsShortName("readme.txt"));
    EXPECT_TRUE(IsShortName("WINDOWS"));
    EXPECT_FALSE(IsShortName("ReadMeFirst.txt"));
    EXPECT_FALSE(IsShortName("a.html"));
    EXPECT_FALSE(IsShortName("a.b.c"));
    EXPECT_FALSE(IsShortName("my file.txt"));
    EXPECT_FALSE(IsShortName(".htaccess"));
    EXPECT_EQ(Short("readme.txt"), "");
}

TEST(ShortNames, LongNamesAreCutCapitalisedAndNumbered) {
    EXPECT_EQ(Short("Program Files"), "PROGRA~1");
    EXPECT_EQ(Short("Program Files", {"PROGRA~1"}), "PROGRA~2");
    EXPECT_EQ(Short("index.html"), "INDEX~1.HTM");
    EXPECT_EQ(Short("my.long.name.html"), "MYLONG~1.HTM");
    EXPECT_EQ(Short(".htaccess"), "HTACCE~1");
    EXPECT_EQ(Short("a+b c;d.txt"), "A_BC_D~1.TXT");
}

TEST(ShortNames, TheBaseShrinksWhenTheNumberGrows) {
    std::set<std::string> taken;
    for (int n = 1; n <= 9; ++n)
        taken.insert("PROGRA~" + std::to_string(n));
    EXPECT_EQ(Short("Program Files", taken), "PROGR~10");
}

}  // namespace
}  // namespace orvex::platform::memory
