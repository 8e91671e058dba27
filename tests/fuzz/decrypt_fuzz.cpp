// decrypt_fuzz.cpp: arbitrary bytes as stored lines for Decrypt, under the definition key
// and another key; every plain line must also survive Encrypt and Decrypt unchanged.
#include <cstdlib>
#include <string>

#include "FuzzSetup.h"
#include "definitions/Cipher.h"

namespace {

void CheckRoundTrip(const std::string& plain, std::string_view key) {
    std::string text = plain;
    std::string stored = orvex::Encrypt(text, key);
    if (orvex::Decrypt(stored, key) != plain) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    // Foreign text makes Shrink fail and log; give the error log a place to go.
    Machine().files.addFolder(kFolder);
    UseProgramFolder();
    const std::string input = Bytes(data, size);
    for (std::string_view key : {orvex::kDefinitionKey, std::string_view("a longer log key")}) {
        std::string text = input;
        orvex::Decrypt(text, key);
        std::string marked = input + "<e";
        orvex::Decrypt(marked, key);
    }
    CheckRoundTrip(input, orvex::kDefinitionKey);
    return 0;
}
