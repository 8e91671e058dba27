// DateText.h: dates as text: the classic Format patterns ("mm/dd/yy hh:nn:ss") and the
// general date form (the locale's short date, a blank, its long time).
#pragma once

#include <string>
#include <string_view>

#include "platform/System.h"

namespace orvex {

// The local time of the installed platform.
platform::LocalTime Now();

// Pattern letters, in either case: yyyy, yy, mm, m, dd, d, hh, h (24-hour), nn, n, ss, s;
// "mm" or "m" right after an hour means minutes, as in the classic run-time. Everything
// else is copied as it stands.
std::string Format(const platform::LocalTime& time, std::string_view pattern);

// The general date form: short date + blank + long time; a moment at midnight shows only
// the date, one on 12/30/1899 (a pure time) only the time.
std::string GeneralDate(const platform::LocalTime& time, platform::System& system);
std::string GeneralDate(const platform::LocalTime& time);  // on the installed platform

}  // namespace orvex
