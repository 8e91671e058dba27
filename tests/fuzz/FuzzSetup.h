// FuzzSetup.h: every input starts from a reset process on a fresh memory machine, so that
// nothing one input loads or logs is there for the next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "app/ProcessState.h"
#include "core/AppState.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::fuzz {

inline const std::string kFolder = "C:\\Orvex";

struct Machine {
    platform::memory::MemoryPlatform platform;
    platform::ScopedPlatform installed{platform.view()};
};

// Resets the process, installs a new machine with the program folder, which doubles as the
// data folder where the error log lands, and returns the machine's files.
inline platform::memory::MemoryFileSystem& FreshInput() {
    static std::optional<Machine> machine;
    ResetProcessState();
    machine.reset();
    machine.emplace();
    machine->platform.files.addFolder(kFolder);
    App().AppPath = kFolder;
    App().DataFolder = kFolder + "\\";
    return machine->platform.files;
}

inline std::string Bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace orvex::fuzz
