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

// Enciphered text: each character below ";" costs a logged failure when it is deciphered,
// and so does each line end in a file of such lines. The fuzzer, rewarded for hitting that
// path more often, fills its inputs with them, although after the first few they only repeat
// the same path. Keeps the first sixteen; the rest become ";", the lowest character the
// cipher writes.
inline std::string WithFewFailures(std::string text) {
    int foreign = 0;
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ';' && ++foreign > 16) c = ';';
    return text;
}

// Text whose every short line costs logged failures, for the same reason: the first lines,
// each ended by a carriage return as the line reader sees it.
inline std::string FirstLines(std::string text, int lines) {
    std::size_t at = 0;
    for (int n = 0; n < lines && at != std::string::npos; ++n) {
        at = text.find('\r', at);
        if (at != std::string::npos) ++at;
    }
    if (at != std::string::npos) text.resize(at);
    return text;
}

}  // namespace orvex::fuzz
