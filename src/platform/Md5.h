// Md5.h: MD5 digests with the platform's own implementation (bcrypt on Windows,
// libcrypto elsewhere); the file scan compares them with the definitions.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace orvex::platform {

class Md5 {
  public:
    Md5();
    ~Md5();
    Md5(const Md5&) = delete;
    Md5& operator=(const Md5&) = delete;

    void update(const char* data, std::size_t size);
    // The digest as 32 lower-case hex digits; the object is spent afterwards.
    std::string hexDigest();

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

std::string Md5Hex(std::string_view bytes);

}  // namespace orvex::platform
