// Convert.h: conversions between text and numbers as the classic run-time does them: the
// strict "as an integer" conversions (failure 13 for no number, 6 when out of range), the
// lenient Val, and number to text.
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvex {

// Blanks around, an optional sign, decimal digits with an optional fraction, rounded half
// to even; or "&H" with hexadecimal digits, which fill the target's bits ("&HFFFF" is -1
// as a 16-bit value). Failure 13 for empty or non-numeric text, 6 when out of range.
std::int16_t CInt(std::string_view text);
std::int32_t CLng(std::string_view text);

// Rounds half to even into the range of the target; failure 6 outside it.
std::int16_t CInt(double value);
std::int32_t CLng(double value);

// The value of the leading number of the text; blanks, tabs and line feeds anywhere are
// skipped, and text that starts with no number gives 0. Never fails.
double Val(std::string_view text);

// Number to text, without the leading blank Str gives positive numbers: up to 15
// significant digits for doubles and 7 for singles, exponent form outside 1E-5..1E15.
std::string CStr(double value);
std::string CStr(float value);
template <std::integral T>
std::string CStr(T value) {
    return std::to_string(value);
}

}  // namespace orvex
