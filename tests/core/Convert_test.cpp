// Convert_test.cpp: strict integer conversions with their failures, the lenient Val, and
// number to text.
#include "core/Convert.h"

#include <gtest/gtest.h>

#include "support/FailureOf.h"

namespace orvex {
namespace {

using testing::FailureOf;

TEST(CInt, AcceptsBlanksSignAndFraction) {
    EXPECT_EQ(CInt("42"), 42);
    EXPECT_EQ(CInt("  -17 "), -17);
    EXPECT_EQ(CInt("3."), 3);
    EXPECT_EQ(CInt(".75"), 1);
}

TEST(CInt, RoundsHalfToEven) {
    EXPECT_EQ(CInt("2.5"), 2);
    EXPECT_EQ(CInt("3.5"), 4);
    EXPECT_EQ(CInt("-2.5"), -2);
    EXPECT_EQ(CInt("0.5"), 0);
    EXPECT_EQ(CInt(2.5), 2);
    EXPECT_EQ(CInt(-3.5), -4);
}

TEST(CInt, RangeIsSixteenBits) {
    EXPECT_EQ(CInt("32767"), 32767);
    EXPECT_EQ(CInt("-32768"), -32768);
    EXPECT_EQ(CInt("-32768.5"), -32768);  // the even neighbour is in range
    EXPECT_EQ(FailureOf([] { CInt("32768"); }), 6);
    EXPECT_EQ(FailureOf([] { CInt("32767.5"); }), 6);
    EXPECT_EQ(FailureOf([] { CInt("99999999999999999999999999"); }), 6);
    EXPECT_EQ(FailureOf([] { CInt(40000.0); }), 6);
}

TEST(CInt, HexFillsTheTargetBitsAndCLngHasThirtyTwo) {
    EXPECT_EQ(CInt("&H1F"), 31);
    EXPECT_EQ(CInt(" &hff "), 255);
    EXPECT_EQ(CInt("&HFFFF"), -1);
    EXPECT_EQ(FailureOf([] { CInt("&H10000"); }), 6);
    EXPECT_EQ(CLng("&HFFFF"), 65535);
    EXPECT_EQ(CLng("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(FailureOf([] { CLng("2147483648"); }), 6);
    EXPECT_EQ(CLng("&HFFFFFFFF"), -1);
    EXPECT_EQ(FailureOf([] { CLng("&H"); }), 13);
    EXPECT_EQ(FailureOf([] { CLng("&HG"); }), 13);
}

TEST(CInt, NonNumbersAreTypeMismatch) {
    for (const char* text : {"", "   ", "abc", "12abc", "1 2", "-", ".", "1.2.3", "+-1", "1e3"})
        EXPECT_EQ(FailureOf([&] { CInt(text); }), 13) << '"' << text << '"';
}

TEST(Val, TakesTheLeadingNumberAndNeverFails) {
    EXPECT_EQ(Val("12abc"), 12);
    EXPECT_EQ(Val(" 1 2 3"), 123);
    EXPECT_EQ(Val("-4.5e2x"), -450);
    EXPECT_EQ(Val("2.5.6"), 2.5);
    EXPECT_EQ(Val("abc"), 0);
    EXPECT_EQ(Val("1e"), 1);
    EXPECT_EQ(Val("&H1F"), 31);
    EXPECT_EQ(Val("&HFFFF"), -1);
    EXPECT_EQ(Val("&O17"), 15);
    EXPECT_EQ(Val("1e99999"), 0);
}

TEST(CStr, HasNoLeadingBlank) {
    EXPECT_EQ(CStr(42), "42");
    EXPECT_EQ(CStr(std::int16_t{-1}), "-1");
    EXPECT_EQ(CStr(2.5), "2.5");
    EXPECT_EQ(CStr(-0.0), "0");
    EXPECT_EQ(CStr(1.0 / 3.0), "0.333333333333333");
    EXPECT_EQ(CStr(1e15), "1E+15");
    EXPECT_EQ(CStr(123456789012345.0), "123456789012345");
    EXPECT_EQ(CStr(0.00001), "1E-05");
    EXPECT_EQ(CStr(0.1f), "0.1");
}

}  // namespace
}  // namespace orvex
