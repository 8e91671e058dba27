// DefinitionCompiler_test.cpp: definition sources into records and records back into lines.
#include "definitions/DefinitionCompiler.h"

#include <gtest/gtest.h>

#include "definitions/Cipher.h"

namespace orvex {
namespace {

using Lines = std::vector<std::string>;

TEST(DefinitionCompiler, SourceLinesAcceptBothLineEnds) {
    EXPECT_EQ(SourceLines("a\r\nb\nc"), (Lines{"a", "b", "c"}));
    EXPECT_EQ(SourceLines("a\n\nb\r\n"), (Lines{"a", "", "b"}));
    EXPECT_EQ(SourceLines(""), Lines{});
    // A lone CR is part of the line, as the loader would keep it.
    EXPECT_EQ(SourceLines("a\rb\n"), (Lines{"a\rb"}));
}

TEST(DefinitionCompiler, RecordIsLengthPrefixedStoredLine) {
    std::string line = "Ver=1";
    const std::string stored = Encrypt(line, kDefinitionKey);
    const std::string record = CompileDefinitionLine("Ver=1");
    ASSERT_EQ(record.size(), 4 + stored.size());
    EXPECT_EQ(static_cast<unsigned char>(record[0]), stored.size());
    EXPECT_EQ(record.substr(1, 3), std::string(3, '\0'));
    EXPECT_EQ(record.substr(4), stored);
}

TEST(DefinitionCompiler, DumpGivesTheSourceBackAndFlagsATruncatedEnd) {
    const std::string bytes = CompileDefinitionSource("[MD5]\r\nab|Name  \n\n[End]\n");
    DumpedDefinitions dumped = DumpDefinitionRecords(bytes);
    EXPECT_TRUE(dumped.complete);
    EXPECT_EQ(dumped.lines, (Lines{"[MD5]", "ab|Name  ", "", "[End]"}));
    EXPECT_EQ(dumped.endOfRecords, bytes.size());

    dumped = DumpDefinitionRecords(bytes + std::string("\x04\x00\x00\x00", 4) + "ab");
    EXPECT_FALSE(dumped.complete);
    EXPECT_EQ(dumped.lines.size(), 4u);
    EXPECT_EQ(dumped.endOfRecords, bytes.size());
}

}  // namespace
}  // namespace orvex
