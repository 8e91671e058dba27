// EnginePath.cpp: paths named on the command line, as the engine names them.
#include "Commands.h"

#ifndef _WIN32
#include "platform/posix/PosixFiles.h"
#endif

namespace orvex::cli {

std::optional<std::string> EnginePath(const std::string& nativePath) {
#ifdef _WIN32
    return nativePath;
#else
    return platform::EnginePathFromNative(nativePath);
#endif
}

}  // namespace orvex::cli
