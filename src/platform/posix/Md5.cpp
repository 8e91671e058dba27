// Md5.cpp: MD5 through OpenSSL's libcrypto.
#include "platform/Md5.h"

#include <openssl/evp.h>

#include "platform/Failure.h"

namespace orvex::platform {

struct Md5::Impl {
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    ~Impl() { EVP_MD_CTX_free(context); }
};

Md5::Md5() : impl_(std::make_unique<Impl>()) {
    if (impl_->context == nullptr || EVP_DigestInit_ex(impl_->context, EVP_md5(), nullptr) != 1)
        Raise(failure::kOutOfMemory);
}

Md5::~Md5() = default;

void Md5::update(const char* data, std::size_t size) {
    EVP_DigestUpdate(impl_->context, data, size);
}

std::string Md5::hexDigest() {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(impl_->context, digest, &length);
    static const char kHex[] = "0123456789abcdef";
    std::string text;
    for (unsigned int i = 0; i < length; ++i) {
        text += kHex[digest[i] >> 4];
        text += kHex[digest[i] & 15];
    }
    return text;
}

std::string Md5Hex(std::string_view bytes) {
    Md5 md5;
    md5.update(bytes.data(), bytes.size());
    return md5.hexDigest();
}

}  // namespace orvex::platform
