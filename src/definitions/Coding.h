// Coding.h: the text cipher's working object: one key, one text, and the transformations
// DoXor (key stream), Stretch (to printable characters) and Shrink (back to bytes).
#pragma once

#include <string>
#include <string_view>

namespace orvex {

class Coding {
  public:
    // Setting the key restarts the process-wide generator's stream for it (Initialize).
    void KeyString(std::string_view key);
    const std::string& KeyString() const { return keyString_; }

    void Text(std::string_view text) { text_.assign(text); }
    const std::string& Text() const { return text_; }

    // Puts the process-wide generator at the start of this key's stream: the state after
    // it depends on the key alone.
    void Initialize();
    // Xors each byte with the next byte of the key stream; its own inverse after the same
    // Initialize.
    void DoXor();
    // Each group of three bytes becomes four characters between ";" and "z": the three
    // low six-bit values, then one carrying the three top bit pairs.
    void Stretch();
    // The inverse of Stretch.
    void Shrink();

  private:
    void ShrinkInto(std::string& out);

    std::string keyString_;
    std::string text_;
    std::string scratch_;  // the other buffer of Stretch and Shrink, kept for its capacity
};

}  // namespace orvex
