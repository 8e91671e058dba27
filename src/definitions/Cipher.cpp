// Cipher.cpp: Encrypt and Decrypt around Coding. Decrypt keeps one Coding object for the
// whole run, since a definition file costs one call per record.
#include "definitions/Cipher.h"

#include <algorithm>
#include <cstring>

#include "core/ErrorHandler.h"
#include "definitions/Coding.h"

namespace orvex {
namespace {

constexpr std::size_t kKeyFieldLength = 10;
constexpr std::string_view kMarker = "<e";

void FillKeyField(std::string_view key, char (&field)[kKeyFieldLength]) {
    const std::size_t used = std::min(key.size(), kKeyFieldLength);
    std::memcpy(field, key.data(), used);
    std::memset(field + used, ' ', kKeyFieldLength - used);
}

Coding& DecryptCoding() {
    static Coding coding;
    return coding;
}

}  // namespace

std::string KeyField(std::string_view key) {
    char field[kKeyFieldLength];
    FillKeyField(key, field);
    return std::string(field, kKeyFieldLength);
}

std::string Encrypt(std::string& text, std::string_view key) {
    std::string stored;
    Procedure proc("Enc", "Encrypt");
    proc.Run([&] {
        const std::string field = KeyField(key);
        text += field;
        Coding coding;
        coding.KeyString(field);
        coding.Text(text);
        coding.DoXor();
        coding.Stretch();
        stored = coding.Text();
        stored += kMarker;
    });
    return stored;
}

void Decrypt(std::string& text, std::string_view key, std::string& plain) {
    if (text.size() < kMarker.size() || std::string_view(text).substr(text.size() - 2) != kMarker) {
        plain = "ERR1";
        return;
    }
    text.resize(text.size() - kMarker.size());
    char field[kKeyFieldLength];
    FillKeyField(key, field);
    Coding& coding = DecryptCoding();
    coding.KeyString(std::string_view(field, kKeyFieldLength));
    coding.Text(text);
    coding.Shrink();
    coding.DoXor();
    const std::string& p = coding.Text();
    // A text too short to hold the key field cannot verify.
    if (p.size() < kKeyFieldLength ||
        std::memcmp(p.data() + p.size() - kKeyFieldLength, field, kKeyFieldLength) != 0) {
        plain = "ERR2";
        return;
    }
    plain.assign(p, 0, p.size() - kKeyFieldLength);
}

std::string Decrypt(std::string& text, std::string_view key) {
    std::string plain;
    Decrypt(text, key, plain);
    return plain;
}

}  // namespace orvex
