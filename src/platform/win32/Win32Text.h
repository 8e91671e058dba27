// Win32Text.h: small helpers for the ANSI functions of the Win32 back-end: NUL-terminated
// copies of texts and buffers that grow to what a function says it needs.
#pragma once

#include <windows.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace orvex::platform::win32 {

inline bool HasNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

// The text cut at its first NUL.
inline std::string CutAtNul(const char* text, std::size_t capacity) {
    return std::string(text, std::find(text, text + capacity, '\0'));
}

// Calls `call(buffer, capacity)` for the functions that return the length they wrote, or a
// larger number (the size they need) when the buffer is too small, or 0 on failure. Returns
// the Win32 error, 0 on success; the buffer grows a few times, never without bound.
template <class Call>
DWORD CallGrowing(Call call, std::string& out, DWORD start = MAX_PATH + 1) {
    std::string buffer(start, '\0');
    for (int attempt = 0; attempt < 6; ++attempt) {
        DWORD length = call(buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) {
            DWORD error = GetLastError();
            return error != 0 ? error : ERROR_GEN_FAILURE;
        }
        if (length < buffer.size()) {
            buffer.resize(length);
            out = std::move(buffer);
            return 0;
        }
        buffer.assign(std::max<std::size_t>(length + 1, buffer.size() * 2), '\0');
    }
    return ERROR_INSUFFICIENT_BUFFER;
}

}  // namespace orvex::platform::win32
