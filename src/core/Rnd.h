// Rnd.h: the classic 24-bit linear congruential generator behind Rnd and Randomize; the
// text cipher draws its key stream from the one process-wide instance.
#pragma once

#include <bit>
#include <cstdint>

namespace orvex {

class Generator {
  public:
    static constexpr std::uint32_t kInitialState = 0x50000;
    static constexpr std::uint32_t kMask = 0xFFFFFF;

    explicit Generator(std::uint32_t state = kInitialState) : state_(state & kMask) {}

    // n == 0 repeats the last value, n < 0 restarts from a state derived from n alone,
    // n > 0 (and n < 0 after the restart) advances the sequence.
    float Rnd(float n) {
        if (n == 0.0f) return Value();
        if (n < 0.0f) {
            const std::uint32_t b = std::bit_cast<std::uint32_t>(n);
            state_ = ((b >> 24) + b) & kMask;
        }
        Advance();
        return Value();
    }

    // The next value of the sequence.
    float Rnd() {
        Advance();
        return Value();
    }

    // Mixes the upper half of the double's bit pattern into the state; only the low byte
    // of the old state survives.
    void Randomize(double seed) {
        const auto h = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(seed) >> 32);
        state_ = (((h & 0xFFFF) << 8) ^ ((h >> 8) & 0xFFFF00)) | (state_ & 0xFF);
    }

    // Steps the recurrence and returns the new state. Int(Rnd() * 256) is exactly the top
    // byte of this state, which is what the cipher's hot loop uses.
    std::uint32_t Advance() {
        state_ = (state_ * 1140671485u + 12820163u) & kMask;
        return state_;
    }

    // The current value, state / 2^24; exact in single precision.
    float Value() const { return static_cast<float>(state_) * (1.0f / 16777216.0f); }

    std::uint32_t state() const { return state_; }
    void setState(std::uint32_t state) { state_ = state & kMask; }

  private:
    std::uint32_t state_;
};

// The process-wide generator, starting in the initial state.
Generator& ProcessGenerator();

float Rnd();
float Rnd(float n);
void Randomize(double seed);

}  // namespace orvex
