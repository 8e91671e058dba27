// Platform.h: the process-wide set of back-ends the engine runs on. The programs install
// the host back-end at start; tests install a memory back-end for their scope.
#pragma once

#include <memory>

#include "platform/FileSystem.h"
#include "platform/Processes.h"
#include "platform/Registry.h"
#include "platform/System.h"

namespace orvex::platform {

struct Platform {
    RegistryBackend* registry = nullptr;
    FileSystem* files = nullptr;
    ProcessApi* processes = nullptr;
    System* system = nullptr;
};

// The installed back-ends; raises failure 91 when none is installed.
const Platform& Current();
RegistryBackend& Registry();
FileSystem& Files();
ProcessApi& Processes();
System& Sys();

// Leaves no back-end installed.
void UninstallPlatform();

// Installs a platform for the lifetime of the guard and puts the previous one back after.
class ScopedPlatform {
  public:
    explicit ScopedPlatform(const Platform& platform);
    ~ScopedPlatform();
    ScopedPlatform(const ScopedPlatform&) = delete;
    ScopedPlatform& operator=(const ScopedPlatform&) = delete;

  private:
    Platform previous_;
};

// A back-end that owns its parts.
class OwnedPlatform {
  public:
    virtual ~OwnedPlatform() = default;
    virtual Platform view() = 0;
};

// The real machine's back-end: Win32 on Windows, POSIX elsewhere.
std::unique_ptr<OwnedPlatform> MakeHostPlatform();

}  // namespace orvex::platform
