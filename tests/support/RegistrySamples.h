// RegistrySamples.h: values of every type with awkward contents, for the tests that write a
// key and compare what comes back.
#pragma once

#include <string>
#include <vector>

#include "platform/Registry.h"

namespace orvex::testing {

inline std::vector<platform::RegValue> SampleValues() {
    namespace regtype = platform::regtype;
    return {
        // Windows-1252 bytes, not UTF-8.
        {"", regtype::kSz, "\"C:\\spy.exe\" /run caf\xe9 \xa9 \x80 \xff"},
        {"Lines", regtype::kSz, "one\r\ntwo"},
        {"Empty", regtype::kSz, ""},
        {"Path", regtype::kExpandSz, "%SystemRoot%\\spy"},
        {"List", regtype::kMultiSz, std::string("a\0b c\0\0", 7)},
        {"Count", regtype::kDword, std::string("\x2a\0\0\x80", 4)},
        {"Short", regtype::kDword, "\x01"},
        {"Quad", regtype::kQword, std::string("\x01\0\0\0\0\0\0\xff", 8)},
        {"Blob", regtype::kBinary, std::string("\0\x01\xff\x7f", 4) + std::string(296, '\xa5')},
        {"None", regtype::kNone, ""},
        {"Odd", 0xdeadbeef, std::string("\0x", 2)},
    };
}

}  // namespace orvex::testing
