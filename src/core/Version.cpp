// Version.cpp: the version text.
#include "core/Version.h"

#include "core/ErrorHandler.h"

namespace orvex {

std::string VersionText() {
    return ErrorLogVersionText(kVersion.major, kVersion.minor, kVersion.revision);
}

}  // namespace orvex
