// DateText_test.cpp: the error log's date pattern and the general date form.
#include "core/DateText.h"

#include "support/MemoryFixture.h"

namespace orvex {
namespace {

using platform::LocalTime;

TEST(Format, ErrorLogPattern) {
    EXPECT_EQ(Format(LocalTime{2026, 11, 22, 19, 14, 5}, "mm/dd/yy hh:nn:ss"), "11/22/26 19:14:05");
    EXPECT_EQ(Format(LocalTime{2005, 3, 4, 0, 7, 9}, "mm/dd/yy hh:nn:ss"), "03/04/05 00:07:09");
}

TEST(Format, OtherPatternLetters) {
    const LocalTime t{2026, 1, 2, 3, 4, 5};
    EXPECT_EQ(Format(t, "yyyy-m-d h.n.s"), "2026-1-2 3.4.5");
    EXPECT_EQ(Format(t, "YYYYMMDD"), "20260102");
    EXPECT_EQ(Format(t, "hh:mm"), "03:04");  // m after an hour is minutes
    EXPECT_EQ(Format(t, "[dd]"), "[02]");
}

using GeneralDateTest = testing::MemoryPlatformTest;

TEST_F(GeneralDateTest, DateBlankLongTime) {
    EXPECT_EQ(GeneralDate(LocalTime{2026, 11, 22, 19, 14, 5}), "11/22/2026 7:14:05 PM");
}

TEST_F(GeneralDateTest, PureDateAndPureTime) {
    EXPECT_EQ(GeneralDate(LocalTime{2026, 11, 22, 0, 0, 0}), "11/22/2026");
    EXPECT_EQ(GeneralDate(LocalTime{1899, 12, 30, 7, 0, 1}), "7:00:01 AM");
}

TEST_F(GeneralDateTest, NowReadsThePlatformClock) {
    system.setNow(2024, 2, 29, 23, 59, 58);
    EXPECT_EQ(Format(Now(), "mm/dd/yy hh:nn:ss"), "02/29/24 23:59:58");
}

}  // namespace
}  // namespace orvex
