// DateText_test.cpp: the error log's date pattern and the general date form.
#include "core/DateText.h"

#include "support/MemoryFixture.h"

namespace orvex {
namespace {

using platform::LocalTime;

TEST(Format, ErrorLogPatternAndTheOtherLetters) {
    const LocalTime t{2026, 1, 2, 3, 4, 5};
    const std::string errorLog = "mm/dd/yy hh:nn:ss";
    // In "hh:mm" an m after an hour is minutes.
    EXPECT_EQ((std::vector<std::string>{Format(LocalTime{2026, 11, 22, 19, 14, 5}, errorLog),
                                        Format(LocalTime{2005, 3, 4, 0, 7, 9}, errorLog),
                                        Format(t, "yyyy-m-d h.n.s"), Format(t, "YYYYMMDD"),
                                        Format(t, "hh:mm"), Format(t, "[dd]")}),
              (std::vector<std::string>{"11/22/26 19:14:05", "03/04/05 00:07:09", "2026-1-2 3.4.5",
                                        "20260102", "03:04", "[02]"}));
}

using GeneralDateTest = testing::MemoryPlatformTest;

// Date, blank and long time; a pure date or a pure time alone; Now reads the platform clock.
TEST_F(GeneralDateTest, DateBlankLongTimeOrEitherAlone) {
    EXPECT_EQ(GeneralDate(LocalTime{2026, 11, 22, 19, 14, 5}) + "|" +
                  GeneralDate(LocalTime{2026, 11, 22, 0, 0, 0}) + "|" +
                  GeneralDate(LocalTime{1899, 12, 30, 7, 0, 1}),
              "11/22/2026 7:14:05 PM|11/22/2026|7:00:01 AM");
    system.setNow(2024, 2, 29, 23, 59, 58);
    EXPECT_EQ(Format(Now(), "mm/dd/yy hh:nn:ss"), "02/29/24 23:59:58");
}

}  // namespace
}  // namespace orvex
