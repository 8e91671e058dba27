// Md5.cpp: MD5 through the Windows CNG (bcrypt).
#include "platform/Md5.h"

#include <windows.h>
// bcrypt.h needs the base types of windows.h first.
#include <bcrypt.h>

#include "platform/Failure.h"

namespace orvex::platform {

struct Md5::Impl {
    BCRYPT_ALG_HANDLE algorithm = nullptr;
    BCRYPT_HASH_HANDLE hash = nullptr;
    ~Impl() {
        if (hash != nullptr) BCryptDestroyHash(hash);
        if (algorithm != nullptr) BCryptCloseAlgorithmProvider(algorithm, 0);
    }
};

Md5::Md5() : impl_(std::make_unique<Impl>()) {
    if (BCryptOpenAlgorithmProvider(&impl_->algorithm, BCRYPT_MD5_ALGORITHM, nullptr, 0) != 0 ||
        BCryptCreateHash(impl_->algorithm, &impl_->hash, nullptr, 0, nullptr, 0, 0) != 0)
        Raise(failure::kOutOfMemory);
}

Md5::~Md5() = default;

void Md5::update(const char* data, std::size_t size) {
    // BCryptHashData takes 32-bit lengths.
    while (size > 0) {
        const ULONG chunk = size > 0x40000000u ? 0x40000000u : static_cast<ULONG>(size);
        BCryptHashData(impl_->hash, reinterpret_cast<PUCHAR>(const_cast<char*>(data)), chunk, 0);
        data += chunk;
        size -= chunk;
    }
}

std::string Md5::hexDigest() {
    unsigned char digest[16] = {};
    BCryptFinishHash(impl_->hash, digest, sizeof digest, 0);
    static const char kHex[] = "0123456789abcdef";
    std::string text;
    for (unsigned char byte : digest) {
        text += kHex[byte >> 4];
        text += kHex[byte & 15];
    }
    return text;
}

std::string Md5Hex(std::string_view bytes) {
    Md5 md5;
    md5.update(bytes.data(), bytes.size());
    return md5.hexDigest();
}

}  // namespace orvex::platform
