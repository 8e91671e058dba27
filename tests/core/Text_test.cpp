// Text_test.cpp: the classic text functions: 1-based positions, case-blind text
// comparison over the ANSI letters, clipping, and the failures of bad arguments.
#include "core/Text.h"

#include <gtest/gtest.h>

#include "support/FailureOf.h"

namespace orvex {
namespace {

using testing::FailureOf;
using V = std::vector<std::string>;
using Ints = std::vector<std::int64_t>;

// Positions are 1-based. Accented capitals of Windows-1252 fold too; the multiply sign is
// no letter. StrComp compares bytes unsigned.
TEST(InStr, PositionsAreOneBasedAndTextComparisonIgnoresCaseOfAnsiLetters) {
    const std::string path = "C:\\Program Files\\Spy.EXE";
    EXPECT_EQ(
        (Ints{InStr("abcabc", "c"), InStr(4, "abcabc", "c"), InStr(7, "abcabc", "c"),
              InStr(2, "abc", ""), InStr(path, "spy.exe"), InStr(path, "spy.exe", Compare::Text),
              InStr("x\xC9T\xE9", "\xE9t\xC9"), InStr("x\xC9T\xE9", "\xE9t\xC9", Compare::Text),
              InStr("\xD7", "\xF7", Compare::Text), InStrRev("a|B|b", "b", Compare::Text),
              InStrRev("a|B|b", "B"), StrComp("abc", "ab"), StrComp("\xE9", "z"),
              StrComp("ABC", "abc"), StrComp("ABC", "abc", Compare::Text)}),
        (Ints{3, 6, 0, 2, 0, 18, 0, 2, 0, 5, 3, 1, 1, -1, 0}));
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

TEST(Split, PiecesLimitsAndTextComparison) {
    EXPECT_TRUE(Split("", "|").empty());
    EXPECT_EQ(Split("a||b|", "|"), (V{"a", "", "b", ""}));
    EXPECT_EQ(Split("a|b", ""), (V{"a|b"}));
    EXPECT_EQ(Split("1x2X3", "x"), (V{"1", "2X3"}));
    EXPECT_EQ(Split("1x2X3", "x", -1, Compare::Text), (V{"1", "2", "3"}));
    EXPECT_EQ(Split("a*b*c", "*", 2), (V{"a", "b*c"}));
    EXPECT_EQ(SplitViews("a^^b", "^").size(), 3u);
    EXPECT_EQ(Join(Split("a|b||c", "|"), "|"), "a|b||c");
    EXPECT_EQ(
        (Ints{Occurs("", "|"), Occurs("a|b|", "|"), Occurs("a||b|||c", "||"), Occurs("abc", "")}),
        (Ints{0, 3, 3, 1}));
}

TEST(LeftMidRightTrim, ClipPastTheEndAndTrimBlanksOnly) {
    EXPECT_EQ((V{Left("abc", 10), Right("abc", 10), Mid("abcdef", 3, 2), Mid("abcdef", 5, 100),
                 Mid("abc", 9, 2), Left("abc", 0), Trim("  a b \t "), LTrim("  a  "),
                 RTrim("  a  "), Trim("    ")}),
              (V{"abc", "abc", "cd", "ef", "", "", "a b \t", "a  ", "  a", ""}));
}

// The result starts at `start`; replacements are not searched again.
TEST(Replace, AllOrCountedOccurrences) {
    EXPECT_EQ((V{Replace("a\r\n\r\nb\r\n\r\n", "\r\n\r\n", "\r\n"),
                 Replace("aXbxc", "x", "-", 1, -1, Compare::Text), Replace("xxx", "x", "y", 1, 2),
                 Replace("abcabc", "b", "", 3), Replace("abc", "", "z"), Replace("aa", "a", "aa")}),
              (V{"a\r\nb\r\n", "a-b-c", "yyx", "cac", "abc", "aaaa"}));
}

TEST(Text, BadLengthsStartsAndCharactersAreFailure5) {
    EXPECT_EQ((Ints{FailureOf([] { Left("abc", -1); }), FailureOf([] { Mid("abc", 1, -1); }),
                    FailureOf([] { Mid("abc", 0); }), FailureOf([] { Space(-1); }),
                    FailureOf([] { Asc(""); }), FailureOf([] { Chr(256); }),
                    FailureOf([] { InStr(0, "abc", "a"); }),
                    FailureOf([] { Replace("a", "a", "b", 0); })}),
              Ints(8, 5));
}

}  // namespace
}  // namespace orvex
