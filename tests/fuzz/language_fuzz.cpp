// language_fuzz.cpp: arbitrary bytes as a language file, through the load at start and the
// value read of both paths, on the memory back-end.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/AppState.h"
#include "platform/memory/MemoryPlatform.h"
#include "ui/Language.h"

namespace {

const std::string kFile = "C:\\Orvex\\Fuzz.lng";

orvex::platform::memory::MemoryPlatform& Machine() {
    static orvex::platform::memory::MemoryPlatform machine;
    static orvex::platform::ScopedPlatform installed{machine.view()};
    return machine;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& machine = Machine();
    std::string bytes(reinterpret_cast<const char*>(data), size);
    // A leading 'L' puts the file past the profile limit, so the line scan runs too.
    if (!bytes.empty() && bytes[0] == 'L')
        bytes = ";" + std::string(orvex::kProfileFileLimit, 'p') + "\r\n" + bytes;
    machine.files.addFile(kFile, bytes);

    orvex::App().AppPath = "C:\\Orvex";
    orvex::CurrentLanguage() = "Fuzz";
    orvex::LngArray() = orvex::LanguageTable{};
    orvex::LoadLanguageAtStart();
    orvex::ReadLanguageValue(kFile, "Strings", "1");
    orvex::ReadLanguageValue(kFile, "frmmain", "frmmain.Caption");
    return 0;
}
