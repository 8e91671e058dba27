// Win32Files.h: the file primitives on kernel32, ANSI paths, classic failure numbers.
#pragma once

#include "platform/FileSystem.h"

namespace orvex::platform::win32 {

class Win32Files : public FileSystem {
  public:
    std::unique_ptr<FileStream> open(std::string_view path, OpenMode mode) override;
    bool fileExists(std::string_view path) override;
    bool folderExists(std::string_view path) override;
    std::vector<std::string> drives() override;
    int driveType(std::string_view root) override;
    std::vector<DirEntry> list(std::string_view folder) override;
    std::string shortPath(std::string_view path) override;
    std::string longPath(std::string_view path) override;
    std::uint32_t attributes(std::string_view path) override;
    void setAttributes(std::string_view path, std::uint32_t attributes) override;
    std::uint64_t length(std::string_view path) override;
    void copy(std::string_view from, std::string_view to, bool overwrite) override;
    void remove(std::string_view path) override;
    void createFolder(std::string_view path) override;
    void replace(std::string_view from, std::string_view to) override;
    std::uint64_t freeSpace(std::string_view root) override;
    std::uint64_t folderStamp(std::string_view folder) override;
};

}  // namespace orvex::platform::win32
