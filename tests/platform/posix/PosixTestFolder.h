// PosixTestFolder.h: a scratch folder made with mkdtemp for the POSIX back-end tests,
// removed with everything in it afterwards.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>

namespace orvex::testing {

class PosixTestFolder {
  public:
    PosixTestFolder() {
        std::string pattern = "/tmp/orvex-posix-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
        path_ = pattern;
    }
    ~PosixTestFolder() {
        std::error_code ignored;
        // Tests take permissions away; give them back so that everything can go.
        for (auto& e : std::filesystem::recursive_directory_iterator(path_, ignored))
            if (!e.is_symlink()) ::chmod(e.path().c_str(), 0700);
        std::filesystem::remove_all(path_, ignored);
    }
    PosixTestFolder(const PosixTestFolder&) = delete;
    PosixTestFolder& operator=(const PosixTestFolder&) = delete;

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(*this / name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const {
        std::ifstream in(*this / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    void makeFolder(const std::string& name) const { ::mkdir((*this / name).c_str(), 0755); }

  private:
    std::string path_;
};

}  // namespace orvex::testing
