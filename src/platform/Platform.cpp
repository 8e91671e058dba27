// Platform.cpp: the installed back-ends.
#include "platform/Platform.h"

#include "platform/Failure.h"

namespace orvex::platform {
namespace {
Platform installed;

template <class T>
T& Require(T* part) {
    if (part == nullptr) Raise(failure::kObjectNotSet);
    return *part;
}
}  // namespace

const Platform& Current() {
    return installed;
}
RegistryBackend& Registry() {
    return Require(installed.registry);
}
FileSystem& Files() {
    return Require(installed.files);
}
ProcessApi& Processes() {
    return Require(installed.processes);
}
System& Sys() {
    return Require(installed.system);
}

void UninstallPlatform() {
    installed = Platform{};
}

ScopedPlatform::ScopedPlatform(const Platform& platform) : previous_(installed) {
    installed = platform;
}

ScopedPlatform::~ScopedPlatform() {
    installed = previous_;
}

}  // namespace orvex::platform
