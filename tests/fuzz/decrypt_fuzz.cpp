// decrypt_fuzz.cpp: arbitrary bytes as stored lines for Decrypt, under the definition key
// or another key; every plain line must also survive Encrypt and Decrypt unchanged.
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
    FreshInput();  // foreign text makes Shrink fail and log
    // Each input takes one key and one form: the first byte picks the definition key or one
    // longer than the key field, and the line as stored or with the end marker after it.
    const std::uint8_t choice = size > 0 ? data[0] : 0;
    const std::string_view key =
        (choice & 1) != 0 ? std::string_view("a longer log key") : orvex::kDefinitionKey;
    const std::string input = Bytes(data, size);
    std::string text = WithFewFailures(input);
    if ((choice & 2) != 0) text += "<e";
    orvex::Decrypt(text, key);
    CheckRoundTrip(input, key);
    return 0;
}
