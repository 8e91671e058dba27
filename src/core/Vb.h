// Vb.h: the 16-bit boolean the shared state and the stores use (true is -1, false 0).
#pragma once

#include <cstdint>

namespace orvex {

using VbBool = std::int16_t;
inline constexpr VbBool VbTrue = -1;
inline constexpr VbBool VbFalse = 0;

constexpr VbBool ToVb(bool b) {
    return b ? VbTrue : VbFalse;
}
constexpr bool IsTrue(VbBool b) {
    return b != VbFalse;
}

}  // namespace orvex
