// Text.h: the classic text functions on byte strings of the ANSI code page (Windows-1252):
// 1-based positions, binary or text (case-blind) comparison, clipping Left/Mid/Right.
// Texts are never transcoded; a std::string holds the bytes as they are.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

enum class Compare { Binary = 0, Text = 1 };

// Case mapping of the ANSI letters (A-Z and the accented letters of Windows-1252);
// every other byte is kept.
unsigned char AnsiLower(unsigned char c);
unsigned char AnsiUpper(unsigned char c);
std::string LCase(std::string_view text);
std::string UCase(std::string_view text);

// Position (1-based) of `find` in `text` from `start`, 0 when absent. Failure 5 for
// start < 1. An empty `find` gives `start` while start lies within the text.
std::int64_t InStr(std::int64_t start, std::string_view text, std::string_view find,
                   Compare compare = Compare::Binary);
inline std::int64_t InStr(std::string_view text, std::string_view find,
                          Compare compare = Compare::Binary) {
    return InStr(1, text, find, compare);
}
// Position of the last occurrence, 0 when absent.
std::int64_t InStrRev(std::string_view text, std::string_view find,
                      Compare compare = Compare::Binary);

// The number of pieces splitting `text` by `delimiter` gives: 0 for an empty text, 1 for
// an empty delimiter.
std::int32_t Occurs(std::string_view text, std::string_view delimiter);

// The pieces between separators: none for an empty text, separators + 1 otherwise. An
// empty separator gives the whole text as one piece. `limit` > 0 caps the piece count,
// the last piece keeping the rest.
std::vector<std::string> Split(std::string_view text, std::string_view separator, int limit = -1,
                               Compare compare = Compare::Binary);
// The same pieces as views into `text`, for readers that split many lines.
std::vector<std::string_view> SplitViews(std::string_view text, std::string_view separator,
                                         Compare compare = Compare::Binary);
std::string Join(const std::vector<std::string>& pieces, std::string_view separator);

// Lengths past the end clip; a negative length (or a start below 1) is failure 5.
std::string Left(std::string_view text, std::int64_t length);
std::string Right(std::string_view text, std::int64_t length);
std::string Mid(std::string_view text, std::int64_t start);
std::string Mid(std::string_view text, std::int64_t start, std::int64_t length);

// Blanks (spaces) only, as the classic functions do.
std::string Trim(std::string_view text);
std::string LTrim(std::string_view text);
std::string RTrim(std::string_view text);

// Replaces `count` occurrences (-1: all) found from `start`; like the classic Replace the
// result begins at `start`. Failure 5 for start < 1 or count < -1.
std::string Replace(std::string_view expression, std::string_view find,
                    std::string_view replacement, std::int64_t start = 1, std::int64_t count = -1,
                    Compare compare = Compare::Binary);

// -1, 0 or 1 as a sorts before, equal to, or after b (bytes unsigned; Text ignores case).
int StrComp(std::string_view a, std::string_view b, Compare compare = Compare::Binary);

// Byte value 0..255 of the first character; failure 5 for an empty text.
int Asc(std::string_view text);
// The one-byte text of a value 0..255; failure 5 otherwise.
std::string Chr(int value);

std::string Space(std::int64_t count);  // failure 5 when negative
bool StartsWith(std::string_view text, std::string_view prefix);
bool EndsWith(std::string_view text, std::string_view suffix);

}  // namespace orvex
