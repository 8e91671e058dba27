// Text.cpp: the classic text functions on ANSI byte strings.
#include "core/Text.h"

#include <algorithm>
#include <array>

#include "platform/Failure.h"

namespace orvex {
namespace {

struct CaseTables {
    std::array<unsigned char, 256> lower{}, upper{};
    constexpr CaseTables() {
        for (int c = 0; c < 256; ++c)
            lower[c] = upper[c] = static_cast<unsigned char>(c);
        auto pair = [this](int up, int low) {
            lower[up] = static_cast<unsigned char>(low);
            upper[low] = static_cast<unsigned char>(up);
        };
        for (int c = 'A'; c <= 'Z'; ++c)
            pair(c, c + 32);
        for (int c = 0xC0; c <= 0xDE; ++c)
            if (c != 0xD7) pair(c, c + 32);  // 0xD7 and 0xF7 are the multiply and divide signs
        pair(0x8A, 0x9A);                    // S caron
        pair(0x8C, 0x9C);                    // OE
        pair(0x8E, 0x9E);                    // Z caron
        pair(0x9F, 0xFF);                    // Y diaeresis
    }
};
constexpr CaseTables kCase;

bool SameFolded(char a, char b) {
    return kCase.lower[static_cast<unsigned char>(a)] == kCase.lower[static_cast<unsigned char>(b)];
}

// 0-based offset of `find` in `text` at or after `from`, or npos.
std::size_t FindFrom(std::string_view text, std::string_view find, std::size_t from,
                     Compare compare) {
    if (compare == Compare::Binary) return text.find(find, from);
    if (from > text.size()) return std::string_view::npos;
    auto it = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                          find.begin(), find.end(), SameFolded);
    if (it == text.end() && !find.empty()) return std::string_view::npos;
    return static_cast<std::size_t>(it - text.begin());
}

void RequireNonNegative(std::int64_t length) {
    if (length < 0) Raise(failure::kInvalidCall);
}

std::size_t Clip(std::int64_t length, std::size_t size) {
    return static_cast<std::uint64_t>(length) < size ? static_cast<std::size_t>(length) : size;
}

std::string MapBytes(std::string_view text, const std::array<unsigned char, 256>& table) {
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(table[static_cast<unsigned char>(c)]);
    return out;
}

template <class Piece>
std::vector<Piece> SplitInto(std::string_view text, std::string_view separator, int limit,
                             Compare compare) {
    std::vector<Piece> pieces;
    if (text.empty() || limit == 0) return pieces;
    std::size_t from = 0;
    const auto underLimit = [&] { return limit < 0 || pieces.size() + 1 < std::size_t(limit); };
    while (!separator.empty() && underLimit()) {
        std::size_t at = FindFrom(text, separator, from, compare);
        if (at == std::string_view::npos) break;
        pieces.emplace_back(text.substr(from, at - from));
        from = at + separator.size();
    }
    pieces.emplace_back(text.substr(from));
    return pieces;
}

}  // namespace

unsigned char AnsiLower(unsigned char c) {
    return kCase.lower[c];
}
unsigned char AnsiUpper(unsigned char c) {
    return kCase.upper[c];
}
std::string LCase(std::string_view text) {
    return MapBytes(text, kCase.lower);
}
std::string UCase(std::string_view text) {
    return MapBytes(text, kCase.upper);
}

std::int64_t InStr(std::int64_t start, std::string_view text, std::string_view find,
                   Compare compare) {
    if (start < 1) Raise(failure::kInvalidCall);
    if (text.empty() || static_cast<std::uint64_t>(start) > text.size()) return 0;
    if (find.empty()) return start;
    std::size_t at = FindFrom(text, find, static_cast<std::size_t>(start - 1), compare);
    return at == std::string_view::npos ? 0 : static_cast<std::int64_t>(at) + 1;
}

std::int64_t InStrRev(std::string_view text, std::string_view find, Compare compare) {
    if (find.size() > text.size()) return 0;
    if (compare == Compare::Binary) {
        std::size_t at = text.rfind(find);
        return at == std::string_view::npos ? 0 : static_cast<std::int64_t>(at) + 1;
    }
    for (std::size_t at = text.size() - find.size() + 1; at-- > 0;)
        if (std::equal(find.begin(), find.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                       SameFolded))
            return static_cast<std::int64_t>(at) + 1;
    return 0;
}

std::int32_t Occurs(std::string_view text, std::string_view delimiter) {
    if (text.empty()) return 0;
    if (delimiter.empty()) return 1;
    std::int32_t pieces = 1;
    for (std::size_t at = text.find(delimiter); at != std::string_view::npos;
         at = text.find(delimiter, at + delimiter.size()))
        ++pieces;
    return pieces;
}

std::vector<std::string> Split(std::string_view text, std::string_view separator, int limit,
                               Compare compare) {
    return SplitInto<std::string>(text, separator, limit, compare);
}

std::vector<std::string_view> SplitViews(std::string_view text, std::string_view separator,
                                         Compare compare) {
    return SplitInto<std::string_view>(text, separator, -1, compare);
}

std::string Join(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string out;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) out += separator;
        out += pieces[i];
    }
    return out;
}

std::string Left(std::string_view text, std::int64_t length) {
    RequireNonNegative(length);
    return std::string(text.substr(0, Clip(length, text.size())));
}

std::string Right(std::string_view text, std::int64_t length) {
    RequireNonNegative(length);
    return std::string(text.substr(text.size() - Clip(length, text.size())));
}

std::string Mid(std::string_view text, std::int64_t start) {
    if (start < 1) Raise(failure::kInvalidCall);
    if (static_cast<std::uint64_t>(start) > text.size()) return {};
    return std::string(text.substr(static_cast<std::size_t>(start - 1)));
}

std::string Mid(std::string_view text, std::int64_t start, std::int64_t length) {
    RequireNonNegative(length);
    std::string rest = Mid(text, start);
    rest.resize(Clip(length, rest.size()));
    return rest;
}

std::string LTrim(std::string_view text) {
    std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string() : std::string(text.substr(first));
}

std::string RTrim(std::string_view text) {
    std::size_t last = text.find_last_not_of(' ');
    return last == std::string_view::npos ? std::string() : std::string(text.substr(0, last + 1));
}

std::string Trim(std::string_view text) {
    return LTrim(RTrim(text));
}

std::string Replace(std::string_view expression, std::string_view find,
                    std::string_view replacement, std::int64_t start, std::int64_t count,
                    Compare compare) {
    if (start < 1 || count < -1) Raise(failure::kInvalidCall);
    if (static_cast<std::uint64_t>(start) > expression.size()) return {};
    std::string_view rest = expression.substr(static_cast<std::size_t>(start - 1));
    if (find.empty() || count == 0) return std::string(rest);
    std::string out;
    std::size_t from = 0;
    for (std::int64_t done = 0; count < 0 || done < count; ++done) {
        std::size_t at = FindFrom(rest, find, from, compare);
        if (at == std::string_view::npos) break;
        out.append(rest.substr(from, at - from)).append(replacement);
        from = at + find.size();
    }
    out.append(rest.substr(from));
    return out;
}

int StrComp(std::string_view a, std::string_view b, Compare compare) {
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        unsigned char x = static_cast<unsigned char>(a[i]);
        unsigned char y = static_cast<unsigned char>(b[i]);
        if (compare == Compare::Text) x = kCase.lower[x], y = kCase.lower[y];
        if (x != y) return x < y ? -1 : 1;
    }
    if (a.size() == b.size()) return 0;
    return a.size() < b.size() ? -1 : 1;
}

int Asc(std::string_view text) {
    if (text.empty()) Raise(failure::kInvalidCall);
    return static_cast<unsigned char>(text.front());
}

std::string Chr(int value) {
    if (value < 0 || value > 255) Raise(failure::kInvalidCall);
    return std::string(1, static_cast<char>(value));
}

std::string Space(std::int64_t count) {
    RequireNonNegative(count);
    return std::string(static_cast<std::size_t>(count), ' ');
}

bool StartsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

bool EndsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

}  // namespace orvex
