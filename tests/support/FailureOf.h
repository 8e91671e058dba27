// FailureOf.h: the classic number of the Failure a call raises, for tests of failure paths.
#pragma once

#include "platform/Failure.h"

namespace orvex::testing {

// 0 when the call raises nothing.
int FailureOf(auto&& call) {
    try {
        call();
    } catch (const Failure& f) {
        return f.number();
    }
    return 0;
}

}  // namespace orvex::testing
