// Convert_test.cpp: strict integer conversions with their failures, the lenient Val, and
// number to text.
#include "core/Convert.h"

#include <gtest/gtest.h>

#include "support/FailureOf.h"

namespace orvex {
namespace {

using testing::FailureOf;

// Blanks, sign and fraction; halves round to even; sixteen bits; hex fills the target bits.
TEST(CInt, ConvertsTextAndNumbersToSixteenBits) {
    const std::pair<const char*, int> cases[] = {
        {"42", 42},           {"  -17 ", -17}, {"3.", 3},     {".75", 1},       {"2.5", 2},
        {"3.5", 4},           {"-2.5", -2},    {"0.5", 0},    {"32767", 32767}, {"-32768", -32768},
        {"-32768.5", -32768},  // the even neighbour is in range
        {"&H1F", 31},         {" &hff ", 255}, {"&HFFFF", -1}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(CInt(text), value) << text;
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CInt(-3.5), -4);
    EXPECT_EQ(FailureOf([] { CInt(40000.0); }), 6);
    for (const char* text : {"32768", "32767.5", "99999999999999999999999999", "&H10000"})
        EXPECT_EQ(FailureOf([&] { CInt(text); }), 6) << text;
    for (const char* text : {"", "   ", "abc", "12abc", "1 2", "-", ".", "1.2.3", "+-1", "1e3"})
        EXPECT_EQ(FailureOf([&] { CInt(text); }), 13) << '"' << text << '"';
}

TEST(CLng, HasThirtyTwoBits) {
    EXPECT_EQ(CLng("&HFFFF"), 65535);
    EXPECT_EQ(CLng("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(CLng("&HFFFFFFFF"), -1);
    EXPECT_EQ(FailureOf([] { CLng("2147483648"); }), 6);
    for (const char* text : {"&H", "&HG"})
        EXPECT_EQ(FailureOf([&] { CLng(text); }), 13) << text;
}

TEST(Val, TakesTheLeadingNumberAndNeverFails) {
    const std::pair<const char*, double> cases[] = {
        {"12abc", 12}, {" 1 2 3", 123}, {"-4.5e2x", -450}, {"2.5.6", 2.5}, {"abc", 0},
        {"1e", 1},     {"&H1F", 31},    {"&HFFFF", -1},    {"&O17", 15},   {"1e99999", 0}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(Val(text), value) << text;
}

TEST(CStr, HasNoLeadingBlank) {
    EXPECT_EQ(CStr(42) + " " + CStr(std::int16_t{-1}) + " " + CStr(0.1f), "42 -1 0.1");
    const std::pair<double, const char*> cases[] = {{2.5, "2.5"},
                                                    {-0.0, "0"},
                                                    {1.0 / 3.0, "0.333333333333333"},
                                                    {1e15, "1E+15"},
                                                    {123456789012345.0, "123456789012345"},
                                                    {0.00001, "1E-05"}};
    for (const auto& [number, text] : cases)
        EXPECT_EQ(CStr(number), text);
}

}  // namespace
}  // namespace orvex
