// AnsiCase.h: case folding of Windows-1252 texts, as the registry, the file system and
// the profile API compare names: without regard to case, letters with accents included.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orvex::platform {

constexpr char AnsiUpper(char c) {
    const auto u = static_cast<unsigned char>(c);
    if (u >= 'a' && u <= 'z') return static_cast<char>(u - 0x20);
    if (u >= 0xE0 && u <= 0xFE && u != 0xF7) return static_cast<char>(u - 0x20);
    switch (u) {
        case 0x9A:
            return static_cast<char>(0x8A);  // s caron
        case 0x9C:
            return static_cast<char>(0x8C);  // oe
        case 0x9E:
            return static_cast<char>(0x8E);  // z caron
        case 0xFF:
            return static_cast<char>(0x9F);  // y diaeresis
        default:
            return c;
    }
}

constexpr char AnsiLower(char c) {
    const auto u = static_cast<unsigned char>(c);
    if (u >= 'A' && u <= 'Z') return static_cast<char>(u + 0x20);
    if (u >= 0xC0 && u <= 0xDE && u != 0xD7) return static_cast<char>(u + 0x20);
    switch (u) {
        case 0x8A:
            return static_cast<char>(0x9A);
        case 0x8C:
            return static_cast<char>(0x9C);
        case 0x8E:
            return static_cast<char>(0x9E);
        case 0x9F:
            return static_cast<char>(0xFF);
        default:
            return c;
    }
}

inline std::string AnsiUpperText(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        c = AnsiUpper(c);
    return out;
}

inline bool EqualsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (AnsiUpper(a[i]) != AnsiUpper(b[i])) return false;
    return true;
}

}  // namespace orvex::platform
