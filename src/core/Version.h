// Version.h: the program's version numbers.
#pragma once

#include <string>

namespace orvex {

struct ProgramVersion {
    int major, minor, revision;
};

inline constexpr ProgramVersion kVersion{ORVEX_VERSION_MAJOR, ORVEX_VERSION_MINOR,
                                         ORVEX_VERSION_REVISION};

// "1.0.00": the revision always shows at least two digits.
std::string VersionText();

}  // namespace orvex
