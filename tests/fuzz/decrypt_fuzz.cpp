// decrypt_fuzz.cpp: arbitrary bytes as stored lines for Decrypt, under the definition key
// and another key; every plain line must also survive Encrypt and Decrypt unchanged.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/AppState.h"
#include "definitions/Cipher.h"
#include "platform/memory/MemoryPlatform.h"

namespace {

// Foreign text makes Shrink fail and log; give the error log a place to go.
struct Machine {
    Machine() : installed(platform.view()) {
        platform.files.addFolder("C:\\Data");
        orvex::App().DataFolder = "C:\\Data\\";
    }
    orvex::platform::memory::MemoryPlatform platform;
    orvex::platform::ScopedPlatform installed;
};

void CheckRoundTrip(const std::string& plain, std::string_view key) {
    std::string text = plain;
    std::string stored = orvex::Encrypt(text, key);
    if (orvex::Decrypt(stored, key) != plain) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Machine machine;
    const std::string input(reinterpret_cast<const char*>(data), size);
    for (std::string_view key : {orvex::kDefinitionKey, std::string_view("a longer log key")}) {
        std::string text = input;
        orvex::Decrypt(text, key);
        std::string marked = input + "<e";
        orvex::Decrypt(marked, key);
    }
    CheckRoundTrip(input, orvex::kDefinitionKey);
    return 0;
}
