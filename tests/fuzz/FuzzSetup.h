// FuzzSetup.h: the memory machine every fuzz target runs on, installed once per process,
// and the program folder the readers look in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "core/AppState.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::fuzz {

inline const std::string kFolder = "C:\\Orvex";

// Installed on first use and kept, so each input pays only for its own files.
inline platform::memory::MemoryPlatform& Machine() {
    static platform::memory::MemoryPlatform machine;
    static platform::ScopedPlatform installed{machine.view()};
    return machine;
}

inline std::string Bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// The program folder doubles as the data folder, where the error log lands.
inline void UseProgramFolder() {
    App().AppPath = kFolder;
    App().DataFolder = kFolder + "\\";
}

}  // namespace orvex::fuzz
