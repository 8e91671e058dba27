// DateText.cpp: Format patterns and the general date form.
#include "core/DateText.h"

#include <cctype>

#include "platform/Platform.h"

namespace orvex {
namespace {

std::string Digits(int value, std::size_t width) {
    std::string text = std::to_string(value);
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    return text;
}

// The length of the run of letter `c` (case-blind) at the start of `rest`.
std::size_t RunLength(std::string_view rest, char c) {
    std::size_t n = 0;
    while (n < rest.size() && std::tolower(static_cast<unsigned char>(rest[n])) == c)
        ++n;
    return n;
}

bool IsPureTime(const platform::LocalTime& t) {
    return t.year == 1899 && t.month == 12 && t.day == 30;
}

bool IsMidnight(const platform::LocalTime& t) {
    return t.hour == 0 && t.minute == 0 && t.second == 0;
}

}  // namespace

platform::LocalTime Now() {
    return platform::Sys().now();
}

std::string Format(const platform::LocalTime& t, std::string_view pattern) {
    std::string out;
    bool afterHour = false;
    for (std::size_t i = 0; i < pattern.size();) {
        const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(pattern[i])));
        const std::size_t run = RunLength(pattern.substr(i), c);
        std::size_t width = run >= 2 ? 2 : 1;
        int value = 0;
        switch (c) {
            case 'y':
                width = run >= 4 ? 4 : 2;
                value = width == 4 ? t.year : t.year % 100;
                break;
            case 'm':
                value = afterHour ? t.minute : t.month;
                break;
            case 'd':
                value = t.day;
                break;
            case 'h':
                value = t.hour;
                break;
            case 'n':
                value = t.minute;
                break;
            case 's':
                value = t.second;
                break;
            default:
                out += pattern[i++];
                // Separators between an hour and its minutes keep the hour context.
                if (std::isalpha(static_cast<unsigned char>(c))) afterHour = false;
                continue;
        }
        out += Digits(value, width);
        afterHour = c == 'h';
        i += width;
    }
    return out;
}

std::string GeneralDate(const platform::LocalTime& time, platform::System& system) {
    if (IsPureTime(time)) return system.longTimeText(time);
    if (IsMidnight(time)) return system.shortDateText(time);
    return system.shortDateText(time) + " " + system.longTimeText(time);
}

std::string GeneralDate(const platform::LocalTime& time) {
    return GeneralDate(time, platform::Sys());
}

}  // namespace orvex
