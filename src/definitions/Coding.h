// Coding.h: the text cipher's working object: one key, one text, and the transformations
// DoXor (key stream), Stretch (to printable characters) and Shrink (back to bytes).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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
    void XorFromCache(std::size_t length);
    void ShrinkGroups(class Procedure& proc, std::size_t outputLength);

    std::string keyString_;
    std::string text_;
    std::string scratch_;  // the other buffer of Stretch and Shrink, kept for its capacity

    // Every line under one key starts from the same generator state, so the work that
    // depends on that state alone is kept: the state Initialize reaches for a key, and the
    // key stream from a given state. Both give exactly what recomputing would.
    std::string initializedKey_;
    std::uint32_t initializedState_ = 0;
    bool initialized_ = false;
    std::uint32_t streamStart_ = 0xFFFFFFFF;   // no 24-bit state: nothing cached yet
    std::string streamBytes_;                  // Int(Rnd() * 256) of each step
    std::vector<std::uint32_t> streamStates_;  // the state after each step
};

}  // namespace orvex
