// Coding.cpp: the cipher's transformations. Each runs under the failure handler of the
// "Coding" module; only Shrink can meet a failure, on text that Stretch did not make.
#include "definitions/Coding.h"

#include <algorithm>

#include "core/ErrorHandler.h"
#include "core/Rnd.h"

namespace orvex {
namespace {

constexpr char kModule[] = "Coding";
constexpr int kFirstPrintable = 59;  // ";", the lowest character Stretch writes

unsigned Byte(const std::string& text, std::size_t oneBasedIndex) {
    return static_cast<unsigned char>(text[oneBasedIndex - 1]);
}

// Chr of a computed value: failure 5 outside 0..255.
char ChrByte(int value) {
    if (value < 0 || value > 255) Raise(failure::kInvalidCall);
    return static_cast<char>(value);
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
        generator.Randomize(generator.Rnd(-1.0f));
        for (const unsigned char c : keyString_) {
            const float r = generator.Rnd();
            const float p = -r * static_cast<float>(c);  // one single-precision product
            generator.Randomize(generator.Rnd(p));
        }
    });
}

void Coding::DoXor() {
    Procedure proc(kModule, "DoXor");
    proc.Run([&] {
        Generator& generator = ProcessGenerator();
        // Int(Rnd() * 256) is the top byte of the advanced state.
        for (char& c : text_)
            c = static_cast<char>(c ^ (generator.Advance() >> 16));
    });
}

void Coding::Stretch() {
    Procedure proc(kModule, "Stretch");
    proc.Run([&] {
        const std::size_t n = text_.size();
        scratch_.resize(n + (n + 2) / 3);
        std::size_t k = 0;
        unsigned top = 0;
        for (std::size_t i = 1; i <= n; ++i) {
            const unsigned c = Byte(text_, i);
            scratch_[k++] = static_cast<char>((c & 63) + kFirstPrintable);
            switch (i % 3) {
                case 1:
                    top |= (c / 64) * 16;
                    break;
                case 2:
                    top |= (c / 64) * 4;
                    break;
                default:
                    top |= c / 64;
                    scratch_[k++] = static_cast<char>(top + kFirstPrintable);
                    top = 0;
            }
        }
        if (n % 3 != 0) scratch_[k++] = static_cast<char>(top + kFirstPrintable);
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
        std::ptrdiff_t k = 0, j = 0;
        int top = 0;  // negative for characters below ";"; the bit tests below want that
        for (std::ptrdiff_t i = 1; i <= m; ++i) {
            const int t =
                static_cast<int>(Byte(text_, static_cast<std::size_t>(++k))) - kFirstPrintable;
            int high = 0;
            switch (i % 3) {
                case 1:
                    j = std::min(j + 4, n);
                    top = static_cast<int>(Byte(text_, static_cast<std::size_t>(j))) -
                          kFirstPrintable;
                    high = ((top / 16) & 3) * 64;
                    break;
                case 2:
                    high = ((top / 4) & 3) * 64;
                    break;
                default:
                    high = (top & 3) * 64;
                    ++k;  // the group's fourth character holds the top bits
            }
            const int value = t | high;
            char& out = scratch_[static_cast<std::size_t>(i - 1)];
            if (value >= 0)
                out = static_cast<char>(value);
            else
                proc.Step([&] { out = ChrByte(value); });  // a byte below ";" in the input
        }
        text_.swap(scratch_);
    });
}

}  // namespace orvex
