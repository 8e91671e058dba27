// Coding.cpp: the cipher's transformations. Each runs under the failure handler of the
// "Coding" module; only Shrink can meet a failure, on text that Stretch did not make.
#include "definitions/Coding.h"

#include <algorithm>
#include <cstring>

#include "core/ErrorHandler.h"
#include "core/Rnd.h"

namespace orvex {
namespace {

constexpr char kModule[] = "Coding";
constexpr int kFirstPrintable = 59;  // ";", the lowest character Stretch writes
// Lines longer than this take their key stream straight from the generator.
constexpr std::size_t kMaxCachedStream = 8192;

// The statement output[i] = Chr(value) under the procedure's handler (failure 5 outside
// 0..255); kept out of the hot loop, which only gets here for text the cipher did not make.
[[gnu::cold]] void StoreChr(Procedure& proc, char& out, int value) {
    if (value < 0 || value > 255)
        proc.Fail(failure::kInvalidCall);
    else
        out = static_cast<char>(value);
}

inline void Store(Procedure& proc, char& out, int value) {
    if (value >= 0)
        out = static_cast<char>(value);
    else
        StoreChr(proc, out, value);
}

// text[i] ^= stream[i], eight bytes at a time.
void XorBytes(char* text, const char* stream, std::size_t length) {
    std::size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        std::uint64_t a, b;
        std::memcpy(&a, text + i, 8);
        std::memcpy(&b, stream + i, 8);
        a ^= b;
        std::memcpy(text + i, &a, 8);
    }
    for (; i < length; ++i)
        text[i] = static_cast<char>(text[i] ^ stream[i]);
}

// The six-bit value of a stretched character; negative for characters below ";".
inline int Low(unsigned char c) {
    return c - kFirstPrintable;
}

}  // namespace

void Coding::KeyString(std::string_view key) {
    keyString_.assign(key);
    Initialize();
}

void Coding::Initialize() {
    Procedure proc(kModule, "Initialize");
    proc.Run([&] {
        Generator& generator = ProcessGenerator();
        if (initialized_ && keyString_ == initializedKey_) {
            generator.setState(initializedState_);
            return;
        }
        generator.Randomize(generator.Rnd(-1.0f));
        for (const unsigned char c : keyString_) {
            const float r = generator.Rnd();
            const float p = -r * static_cast<float>(c);  // one single-precision product
            generator.Randomize(generator.Rnd(p));
        }
        initializedKey_ = keyString_;
        initializedState_ = generator.state();
        initialized_ = true;
    });
}

void Coding::DoXor() {
    Procedure proc(kModule, "DoXor");
    proc.Run([&] {
        const std::size_t length = text_.size();
        if (length <= kMaxCachedStream) return XorFromCache(length);
        // A local copy keeps the state in a register; the text's bytes might alias it.
        Generator generator = ProcessGenerator();
        // Int(Rnd() * 256) is the top byte of the advanced state.
        for (char& c : text_)
            c = static_cast<char>(c ^ (generator.Advance() >> 16));
        ProcessGenerator() = generator;
    });
}

void Coding::XorFromCache(std::size_t length) {
    Generator& shared = ProcessGenerator();
    if (shared.state() != streamStart_) {
        streamStart_ = shared.state();
        streamBytes_.clear();
        streamStates_.clear();
    }
    if (streamBytes_.size() < length) {
        Generator generator(streamStates_.empty() ? streamStart_ : streamStates_.back());
        while (streamBytes_.size() < length) {
            streamStates_.push_back(generator.Advance());
            streamBytes_.push_back(static_cast<char>(generator.state() >> 16));
        }
    }
    XorBytes(text_.data(), streamBytes_.data(), length);
    if (length > 0) shared.setState(streamStates_[length - 1]);
}

void Coding::Stretch() {
    Procedure proc(kModule, "Stretch");
    proc.Run([&] {
        const std::size_t n = text_.size();
        scratch_.resize(n + (n + 2) / 3);
        const auto* in = reinterpret_cast<const unsigned char*>(text_.data());
        char* out = scratch_.data();
        std::size_t k = 0;
        unsigned top = 0;
        for (std::size_t i = 1; i <= n; ++i) {
            const unsigned c = in[i - 1];
            out[k++] = static_cast<char>((c & 63) + kFirstPrintable);
            switch (i % 3) {
                case 1:
                    top |= (c / 64) * 16;
                    break;
                case 2:
                    top |= (c / 64) * 4;
                    break;
                default:
                    top |= c / 64;
                    out[k++] = static_cast<char>(top + kFirstPrintable);
                    top = 0;
            }
        }
        if (n % 3 != 0) out[k] = static_cast<char>(top + kFirstPrintable);
        text_.swap(scratch_);
    });
}

void Coding::Shrink() {
    Procedure proc(kModule, "Shrink");
    proc.Run([&] {
        const auto n = static_cast<std::ptrdiff_t>(text_.size());
        const std::ptrdiff_t m = (n - 1) - (n - 1) / 4;  // -1 for an empty text
        scratch_.clear();
        // The output is allocated as blanks; an empty input asks for -1 of them.
        proc.Step([&] {
            if (m < 0) Raise(failure::kInvalidCall);
            scratch_.assign(static_cast<std::size_t>(m), ' ');
        });
        ShrinkGroups(proc, scratch_.size());
        text_.swap(scratch_);
    });
}

// Each group of four characters gives three bytes: a low six-bit value from each of the
// first three, a bit pair from the fourth (first byte's pair highest). A last group of two
// or three characters takes its pairs from the text's last character. The divisions keep
// the classic integer semantics for characters below ";" (negative values).
void Coding::ShrinkGroups(Procedure& proc, std::size_t outputLength) {
    const auto* in = reinterpret_cast<const unsigned char*>(text_.data());
    char* out = scratch_.data();
    const std::size_t groups = outputLength / 3;
    for (std::size_t g = 0; g < groups; ++g, in += 4, out += 3) {
        const int top = Low(in[3]);
        Store(proc, out[0], Low(in[0]) | ((top / 16) & 3) * 64);
        Store(proc, out[1], Low(in[1]) | ((top / 4) & 3) * 64);
        Store(proc, out[2], Low(in[2]) | (top & 3) * 64);
    }
    const std::size_t rest = outputLength % 3;
    if (rest == 0) return;
    const int top = Low(static_cast<unsigned char>(text_.back()));
    Store(proc, out[0], Low(in[0]) | ((top / 16) & 3) * 64);
    if (rest == 2) Store(proc, out[1], Low(in[1]) | ((top / 4) & 3) * 64);
}

}  // namespace orvex
