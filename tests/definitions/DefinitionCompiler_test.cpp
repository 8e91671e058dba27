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
