// ShortNames_test.cpp: 8.3 names come out as Windows makes them.
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "platform/memory/ShortNames.h"

namespace orvex::platform::memory {
namespace {

std::string Short(std::string_view name, const std::set<std::string>& taken = {}) {
    return MakeShortName(name, [&](std::string_view c) { return taken.count(std::string(c)) > 0; });
}

TEST(ShortNames, OnlyLongNamesGetOneCutCapitalisedAndNumbered) {
    for (const char* name : {"README.TXT", "readme.txt", "WINDOWS"})
        EXPECT_TRUE(IsShortName(name) && Short(name).empty()) << name;
    for (const char* name : {"ReadMeFirst.txt", "a.html", "a.b.c", "my file.txt", ".htaccess"})
        EXPECT_FALSE(IsShortName(name)) << name;
    std::set<std::string> nine;
    for (int n = 1; n <= 9; ++n)
        nine.insert("PROGRA~" + std::to_string(n));
    const std::tuple<const char*, std::set<std::string>, const char*> cases[] = {
        {"Program Files", {}, "PROGRA~1"},   {"Program Files", {"PROGRA~1"}, "PROGRA~2"},
        {"Program Files", nine, "PROGR~10"},  // the base shrinks when the number grows
        {"index.html", {}, "INDEX~1.HTM"},   {"my.long.name.html", {}, "MYLONG~1.HTM"},
        {".htaccess", {}, "HTACCE~1"},       {"a+b c;d.txt", {}, "A_BC_D~1.TXT"},
    };
    for (const auto& [name, taken, expected] : cases)
        EXPECT_EQ(Short(name, taken), expected) << name;
}

}  // namespace
}  // namespace orvex::platform::memory
