// Convert.cpp: text to number and back with the classic rules.
#include "core/Convert.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>

#include "platform/Failure.h"

namespace orvex {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

int HexDigit(char c) {
    if (IsDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string_view StripBlanks(std::string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// A magnitude that stops growing past any target range, so long digit runs cannot wrap.
constexpr std::uint64_t kSaturated = std::uint64_t{1} << 40;

std::uint64_t Accumulate(std::uint64_t value, int digit, int base) {
    value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
    return value > kSaturated ? kSaturated : value;
}

// "&H..." as an unsigned value; nullopt when the digits are missing or malformed.
std::optional<std::uint64_t> ParseHex(std::string_view digits) {
    if (digits.empty()) return std::nullopt;
    std::uint64_t value = 0;
    for (char c : digits) {
        int d = HexDigit(c);
        if (d < 0) return std::nullopt;
        value = Accumulate(value, d, 16);
    }
    return value;
}

// A signed decimal with an optional fraction, rounded half to even; nullopt when the text
// is no number. The magnitude saturates, so an overflow still shows as out of range.
std::optional<std::int64_t> ParseDecimal(std::string_view text) {
    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    std::uint64_t whole = 0;
    std::size_t i = 0, digits = 0;
    for (; i < text.size() && IsDigit(text[i]); ++i, ++digits)
        whole = Accumulate(whole, text[i] - '0', 10);
    int firstFraction = 0;
    bool restNonZero = false;
    if (i < text.size() && text[i] == '.') {
        for (std::size_t f = 0; ++i < text.size() && IsDigit(text[i]); ++f, ++digits) {
            if (f == 0)
                firstFraction = text[i] - '0';
            else if (text[i] != '0')
                restNonZero = true;
        }
    }
    if (digits == 0 || i != text.size()) return std::nullopt;
    const bool roundUp = firstFraction > 5 || (firstFraction == 5 && (restNonZero || whole % 2));
    if (roundUp) whole = std::min(whole + 1, kSaturated);
    const auto magnitude = static_cast<std::int64_t>(whole);
    return negative ? -magnitude : magnitude;
}

template <class Target>
Target ToInteger(std::string_view text) {
    using Unsigned = std::make_unsigned_t<Target>;
    text = StripBlanks(text);
    if (text.size() >= 2 && text[0] == '&' && (text[1] == 'H' || text[1] == 'h')) {
        std::optional<std::uint64_t> bits = ParseHex(text.substr(2));
        if (!bits) Raise(failure::kTypeMismatch);
        if (*bits > std::numeric_limits<Unsigned>::max()) Raise(failure::kOverflow);
        return static_cast<Target>(static_cast<Unsigned>(*bits));
    }
    std::optional<std::int64_t> value = ParseDecimal(text);
    if (!value) Raise(failure::kTypeMismatch);
    if (*value < std::numeric_limits<Target>::min() || *value > std::numeric_limits<Target>::max())
        Raise(failure::kOverflow);
    return static_cast<Target>(*value);
}

template <class Target>
Target RoundToInteger(double value) {
    if (std::isnan(value)) Raise(failure::kOverflow);
    const double rounded = std::nearbyint(value);  // the default mode rounds half to even
    if (rounded < std::numeric_limits<Target>::min() ||
        rounded > std::numeric_limits<Target>::max())
        Raise(failure::kOverflow);
    return static_cast<Target>(rounded);
}

// Wraps a hexadecimal or octal literal as the classic run-time types it: 16 bits when it
// fits, else 32 bits.
double WrapLiteral(std::uint64_t value) {
    if (value <= 0xFFFF) return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
    if (value <= 0xFFFFFFFF) return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    return static_cast<double>(value);
}

// Val's text with the blanks it ignores removed, cut at the first character that cannot
// continue the number.
class ValScanner {
  public:
    explicit ValScanner(std::string_view text) : text_(text) {}

    int peek() {
        while (pos_ < text_.size() && IsValBlank(text_[pos_]))
            ++pos_;
        return pos_ < text_.size() ? static_cast<unsigned char>(text_[pos_]) : -1;
    }
    void next() { ++pos_; }

  private:
    static bool IsValBlank(char c) { return c == ' ' || c == '\t' || c == '\n'; }
    std::string_view text_;
    std::size_t pos_ = 0;
};

double ValLiteral(ValScanner& in, int base) {
    std::uint64_t value = 0;
    for (; in.peek() >= 0; in.next()) {
        const int d = HexDigit(static_cast<char>(in.peek()));
        if (d < 0 || d >= base) break;
        value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(d);
        if (value > 0xFFFFFFFFFFFFull) break;  // far past any 32-bit literal
    }
    return WrapLiteral(value);
}

void TakeDigits(ValScanner& in, std::string& out) {
    while (in.peek() >= 0 && IsDigit(static_cast<char>(in.peek()))) {
        out += static_cast<char>(in.peek());
        in.next();
    }
}

}  // namespace

std::int16_t CInt(std::string_view text) {
    return ToInteger<std::int16_t>(text);
}
std::int32_t CLng(std::string_view text) {
    return ToInteger<std::int32_t>(text);
}
std::int16_t CInt(double value) {
    return RoundToInteger<std::int16_t>(value);
}
std::int32_t CLng(double value) {
    return RoundToInteger<std::int32_t>(value);
}

double Val(std::string_view text) {
    ValScanner in(text);
    if (in.peek() == '&') {
        in.next();
        int kind = in.peek();
        if (kind == 'H' || kind == 'h') return in.next(), ValLiteral(in, 16);
        if (kind == 'O' || kind == 'o') return in.next(), ValLiteral(in, 8);
        return 0;
    }
    std::string number;
    if (in.peek() == '+' || in.peek() == '-') {
        number += static_cast<char>(in.peek());
        in.next();
    }
    TakeDigits(in, number);
    if (in.peek() == '.') {
        number += '.';
        in.next();
        TakeDigits(in, number);
    }
    const int e = in.peek();
    if (e == 'e' || e == 'E' || e == 'd' || e == 'D') {
        std::string exponent = "e";
        in.next();
        if (in.peek() == '+' || in.peek() == '-') {
            exponent += static_cast<char>(in.peek());
            in.next();
        }
        const std::size_t before = exponent.size();
        TakeDigits(in, exponent);
        if (exponent.size() > before) number += exponent;
    }
    const double value = std::strtod(number.c_str(), nullptr);
    return std::isfinite(value) ? value : 0.0;
}

std::string CStr(double value) {
    if (value == 0) return "0";  // also for -0
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%.15G", value);
    return buffer;
}

std::string CStr(float value) {
    if (value == 0) return "0";
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.7G", static_cast<double>(value));
    return buffer;
}

}  // namespace orvex
