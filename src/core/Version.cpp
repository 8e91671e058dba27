// Version.cpp: the version text.
#include "core/Version.h"

namespace orvex {

std::string VersionText() {
    std::string revision = std::to_string(kVersion.revision);
    if (revision.size() < 2) revision.insert(0, "0");
    return std::to_string(kVersion.major) + "." + std::to_string(kVersion.minor) + "." + revision;
}

}  // namespace orvex
