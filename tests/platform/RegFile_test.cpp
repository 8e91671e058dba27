// RegFile_test.cpp: the REGEDIT4 text regedit must be able to import, what of regedit's own
// spelling the reader takes, and the files it refuses.
#include "platform/RegFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvex::platform {
namespace {

using ::testing::HasSubstr;

// Raw strings are written with LF; the file has CR LF.
std::string Crlf(std::string_view text) {
    std::string out;
    for (char c : text)
        out += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return out;
}

TEST(RegFile, WritesRegeditsLayout) {
    const std::vector<RegFileKey> keys = {
        {Hive::LocalMachine,
         "Software\\Spy",
         {{"", regtype::kSz, "C:\\a \"b\""},
          {"Count", regtype::kDword, std::string("\x2a\0\0\0", 4)},
          {"Blob", regtype::kBinary, "\x01\xfe"},
          {"Path", regtype::kExpandSz, "%x%"},
          {"Lines", regtype::kSz, "a\r\n"},
          {"Odd", 0x4711, ""}}},
        {Hive::CurrentUser, "", {}},
    };
    EXPECT_EQ(WriteRegFile(keys), Crlf(R"(REGEDIT4

[HKEY_LOCAL_MACHINE\Software\Spy]
@="C:\\a \"b\""
"Count"=dword:0000002a
"Blob"=hex:01,fe
"Path"=hex(2):25,78,25,00
"Lines"=hex(1):61,0d,0a,00
"Odd"=hex(4711):

[HKEY_CURRENT_USER]

)"));
    // Long data goes on over indented lines, as regedit wraps it.
    EXPECT_THAT(
        *WriteRegFile({{Hive::Users, "K", {{"B", regtype::kBinary, std::string(60, 'A')}}}}),
        HasSubstr("41,41,\\\r\n  41,41,"));
    // Names that no line can carry.
    EXPECT_FALSE(WriteRegFile({{Hive::Users, "A\nB", {}}}));
    EXPECT_FALSE(WriteRegFile({{Hive::Users, "K", {{"a\rb", regtype::kSz, ""}}}}));
    EXPECT_FALSE(WriteRegFile({{Hive::PerformanceData, "K", {}}}));
}

TEST(RegFile, ReadsRegeditsVariations) {
    std::string error;
    const auto keys = ReadRegFile(
        "REGEDIT4\n; a comment\n[hkey_users\\K]\n  \"A\" = hex(1):41,42,00\n@=hex:0A,\\\n"
        "\t  ff,\\\n  01\n\"E\"=hex(2):\n\"Quoted\"=\"x\"  \r\n\"D\"=dword:2A\n",
        error);
    ASSERT_TRUE(keys) << error;
    EXPECT_EQ(WriteRegFile(*keys), Crlf(R"(REGEDIT4

[HKEY_USERS\K]
"A"="AB"
@=hex:0a,ff,01
"E"=hex(2):00
"Quoted"="x"
"D"=dword:0000002a

)"));
}

TEST(RegFile, RefusesMalformedTextsSayingWhereAndWhy) {
    const std::string key = "REGEDIT4\n\n[HKEY_CURRENT_USER\\K]\n";
    const std::pair<std::string, std::string> cases[] = {
        {"", "line 1: no REGEDIT4 header"},
        {"REGEDIT4\n\"a\"=\"b\"\n", "before the first key"},
        {"REGEDIT4\n[HKEY_NOWHERE\\A]\n", "unknown root"},
        {"REGEDIT4\n[HKEY_CURRENT_USER\\A\n", "end in \"]\""},
        {"REGEDIT4\n[HKEY_CURRENT_USER\\A\\\\B]\n", "empty part"},
        {"REGEDIT4\n[-HKEY_CURRENT_USER\\A]\n", "deletions"},
        {key + "\"a\"=-\n", "line 4: value deletions"},
        {key + "a=\"b\"\n", "quoted text expected"},
        {key + "\"a\"\n", "\"=\" expected"},
        {key + "\"a\r\"=\"b\"\n", "control character"},
        {key + "\"a\"=\"b\n", "not closed"},
        {key + "\"a\"=\"b\\n\"\n", "may follow a backslash"},
        {key + "\"a\"=\"b\"c\n", "after the closing quote"},
        {key + "\"a\"=dword:123456789\n", "1 to 8 hex digits"},
        {key + "\"a\"=hex:1g\n", "\"1g\" is no hex byte"},
        {key + "\"a\"=hex:100\n", "no hex byte"},
        {key + "\"a\"=hex(123456789):00\n", "type number"},
        {key + "\"a\"=hex:01,\\\n", "past the end"},
        {key + "\"a\"=sz:x\n", "unknown data"},
    };
    for (const auto& [text, fragment] : cases) {
        std::string error;
        EXPECT_FALSE(ReadRegFile(text, error)) << text;
        EXPECT_THAT(error, HasSubstr(fragment)) << text;
    }
}

}  // namespace
}  // namespace orvex::platform
