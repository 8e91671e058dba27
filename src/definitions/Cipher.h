// Cipher.h: the text cipher of the definition files and the scan log. A stored line is
// the stretched, key-stream-xored text of the line plus its 10-character key field,
// followed by the marker "<e".
#pragma once

#include <string>
#include <string_view>

namespace orvex {

// The key of both definition files.
inline constexpr std::string_view kDefinitionKey = "Tq3m";

// The key as the fixed 10-character field: padded with blanks or cut.
std::string KeyField(std::string_view key);

// Appends the key field to `text` (the caller sees it) and returns the stored line.
std::string Encrypt(std::string& text, std::string_view key);

// The plain line, or "ERR1" when `text` lacks the marker (text untouched), or "ERR2" when
// the key field does not verify. When the marker is present it is cut off `text`.
std::string Decrypt(std::string& text, std::string_view key);
// The same, writing the result into `plain` so a reader of many lines reuses its buffer.
void Decrypt(std::string& text, std::string_view key, std::string& plain);

}  // namespace orvex
