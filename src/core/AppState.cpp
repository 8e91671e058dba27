// AppState.cpp: the shared variables and the language table.
#include "core/AppState.h"

#include "platform/Failure.h"
#include "platform/Platform.h"

namespace orvex {

AppState& App() {
    static AppState state;
    return state;
}

LanguageTable& LngArray() {
    static LanguageTable table;
    return table;
}

const std::string& Lng(int n) {
    if (n < 0 || n >= kLngCount) Raise(failure::kSubscript);
    return LngArray()[static_cast<std::size_t>(n)];
}

void ReleaseSingleInstanceMutex() {
    if (App().SingleInstanceMutex != 0) platform::Sys().releaseMutex(App().SingleInstanceMutex);
}

}  // namespace orvex
