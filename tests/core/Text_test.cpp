// Text_test.cpp: the classic text functions: 1-based positions, case-blind text
// comparison over the ANSI letters, clipping, and the failures of bad arguments.
#include "core/Text.h"

#include <gtest/gtest.h>

#include "support/FailureOf.h"

namespace orvex {
namespace {

using testing::FailureOf;

TEST(InStr, PositionsAreOneBased) {
    EXPECT_EQ(InStr("abcabc", "c"), 3);
    EXPECT_EQ(InStr(4, "abcabc", "c"), 6);
    EXPECT_EQ(InStr(7, "abcabc", "c"), 0);
    EXPECT_EQ(InStr(2, "abc", ""), 2);
    EXPECT_EQ(FailureOf([] { InStr(0, "abc", "a"); }), 5);
}

TEST(InStr, TextComparisonIgnoresCaseOfAnsiLetters) {
    EXPECT_EQ(InStr("C:\\Program Files\\Spy.EXE", "spy.exe"), 0);
    EXPECT_EQ(InStr("C:\\Program Files\\Spy.EXE", "spy.exe", Compare::Text), 18);
    // Accented capitals of Windows-1252 fold too; the multiply sign is no letter.
    EXPECT_EQ(InStr("x\xC9T\xE9", "\xE9t\xC9"), 0);
    EXPECT_EQ(InStr("x\xC9T\xE9", "\xE9t\xC9", Compare::Text), 2);
    EXPECT_EQ(InStr("\xD7", "\xF7", Compare::Text), 0);
    EXPECT_EQ(InStrRev("a|B|b", "b", Compare::Text), 5);
    EXPECT_EQ(InStrRev("a|B|b", "B"), 3);
}

TEST(CaseMapping, KeepsEveryNonLetterByte) {
    EXPECT_EQ(UCase("abc\xE0\xFF\x9A\xDF\xB5"
                    "1|"),
              "ABC\xC0\x9F\x8A\xDF\xB5"
              "1|");
    EXPECT_EQ(LCase("ABC\xC0\x9F\x8A\xD7"
                    "1|"),
              "abc\xE0\xFF\x9A\xD7"
              "1|");
}

TEST(Split, EmptyTextGivesNoPieces) {
    EXPECT_TRUE(Split("", "|").empty());
    EXPECT_EQ(Split("a||b|", "|"), (std::vector<std::string>{"a", "", "b", ""}));
    EXPECT_EQ(Split("a|b", ""), (std::vector<std::string>{"a|b"}));
}

TEST(Split, TextComparisonAndLimit) {
    EXPECT_EQ(Split("1x2X3", "x"), (std::vector<std::string>{"1", "2X3"}));
    EXPECT_EQ(Split("1x2X3", "x", -1, Compare::Text), (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_EQ(Split("a*b*c", "*", 2), (std::vector<std::string>{"a", "b*c"}));
    EXPECT_EQ(SplitViews("a^^b", "^").size(), 3u);
    EXPECT_EQ(Join(Split("a|b||c", "|"), "|"), "a|b||c");
}

TEST(LeftMidRight, ClipPastTheEnd) {
    EXPECT_EQ(Left("abc", 10), "abc");
    EXPECT_EQ(Right("abc", 10), "abc");
    EXPECT_EQ(Mid("abcdef", 3, 2), "cd");
    EXPECT_EQ(Mid("abcdef", 5, 100), "ef");
    EXPECT_EQ(Mid("abc", 9, 2), "");
    EXPECT_EQ(Left("abc", 0), "");
}

TEST(Text, BadLengthsStartsAndCharactersAreFailure5) {
    EXPECT_EQ(FailureOf([] { Left("abc", -1); }), 5);
    EXPECT_EQ(FailureOf([] { Mid("abc", 1, -1); }), 5);
    EXPECT_EQ(FailureOf([] { Mid("abc", 0); }), 5);
    EXPECT_EQ(FailureOf([] { Space(-1); }), 5);
    EXPECT_EQ(FailureOf([] { Asc(""); }), 5);
    EXPECT_EQ(FailureOf([] { Chr(256); }), 5);
}

TEST(Trim, RemovesBlanksOnly) {
    EXPECT_EQ(Trim("  a b \t "), "a b \t");
    EXPECT_EQ(LTrim("  a  ") + RTrim("  a  "), "a    a");
    EXPECT_EQ(Trim("    "), "");
}

TEST(Replace, AllOrCountedOccurrences) {
    EXPECT_EQ(Replace("a\r\n\r\nb\r\n\r\n", "\r\n\r\n", "\r\n"), "a\r\nb\r\n");
    EXPECT_EQ(Replace("aXbxc", "x", "-", 1, -1, Compare::Text), "a-b-c");
    EXPECT_EQ(Replace("xxx", "x", "y", 1, 2), "yyx");
    EXPECT_EQ(Replace("abcabc", "b", "", 3), "cac");  // the result starts at `start`
    EXPECT_EQ(Replace("abc", "", "z"), "abc");
    EXPECT_EQ(Replace("aa", "a", "aa"), "aaaa");  // replacements are not searched again
    EXPECT_EQ(FailureOf([] { Replace("a", "a", "b", 0); }), 5);
}

TEST(StrComp, BytesCompareUnsigned) {
    EXPECT_EQ(StrComp("abc", "ab"), 1);
    EXPECT_EQ(StrComp("\xE9", "z"), 1);
    EXPECT_EQ(StrComp("ABC", "abc"), -1);
    EXPECT_EQ(StrComp("ABC", "abc", Compare::Text), 0);
}

TEST(Occurs, CountsPieces) {
    EXPECT_EQ(Occurs("", "|"), 0);
    EXPECT_EQ(Occurs("a|b|", "|"), 3);
    EXPECT_EQ(Occurs("a||b|||c", "||"), 3);
    EXPECT_EQ(Occurs("abc", ""), 1);
}

}  // namespace
}  // namespace orvex
