// FileSystem.h: file primitives every back-end implements. Paths are Windows paths
// ("C:\folder\file.ext"); back-ends on other systems map them onto their own tree.
// Failures are raised as orvex::Failure with the classic numbers (53, 76, 70, 75, ...).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::platform {

namespace attr {
inline constexpr std::uint32_t kReadOnly = 0x1;
inline constexpr std::uint32_t kHidden = 0x2;
inline constexpr std::uint32_t kSystem = 0x4;
inline constexpr std::uint32_t kDirectory = 0x10;
inline constexpr std::uint32_t kArchive = 0x20;
inline constexpr std::uint32_t kNormal = 0x80;
}  // namespace attr

namespace drivetype {
inline constexpr int kUnknown = 0;
inline constexpr int kNoRoot = 1;
inline constexpr int kRemovable = 2;
inline constexpr int kFixed = 3;
inline constexpr int kRemote = 4;
inline constexpr int kCdRom = 5;
inline constexpr int kRamDisk = 6;
}  // namespace drivetype

// One entry of a directory search, as FindFirstFile/FindNextFile give it.
struct DirEntry {
    std::string name;       // long name, no path
    std::string shortName;  // 8.3 name, empty when the long name already is one
    std::uint32_t attributes = 0;
    std::uint64_t size = 0;
    bool isFolder() const { return (attributes & attr::kDirectory) != 0; }
};

enum class OpenMode {
    Read,       // existing file, read only
    Write,      // created or truncated
    Append,     // created when missing; writes go to the position, which starts at the end
    ReadWrite,  // created when missing, not truncated; position at the start
};

class FileStream {
  public:
    virtual ~FileStream() = default;
    // Reads up to `size` bytes at the position; returns how many were read.
    virtual std::size_t read(char* buffer, std::size_t size) = 0;
    virtual void write(const char* data, std::size_t size) = 0;
    virtual void seek(std::uint64_t position) = 0;  // 0-based byte position
    virtual std::uint64_t position() = 0;
    virtual std::uint64_t size() = 0;
    // Makes the written bytes durable (before an atomic replace).
    virtual void flush() = 0;
};

class FileSystem {
  public:
    virtual ~FileSystem() = default;

    virtual std::unique_ptr<FileStream> open(std::string_view path, OpenMode mode) = 0;
    virtual bool fileExists(std::string_view path) = 0;
    virtual bool folderExists(std::string_view path) = 0;
    // Roots of the drives, "C:\" and so on, in drive letter order.
    virtual std::vector<std::string> drives() = 0;
    virtual int driveType(std::string_view root) = 0;
    // The entries of a folder, without "." and "..". Win32 keeps the system's order; other
    // back-ends sort by name so that walks are reproducible.
    virtual std::vector<DirEntry> list(std::string_view folder) = 0;
    // As list(), but only names and the folder attribute are sure to be filled: a walk
    // needs no more, and some back-ends can skip a status call per entry.
    virtual std::vector<DirEntry> listNames(std::string_view folder) { return list(folder); }
    // Raise 53/76 when the path does not exist.
    virtual std::string shortPath(std::string_view path) = 0;
    virtual std::string longPath(std::string_view path) = 0;
    virtual std::uint32_t attributes(std::string_view path) = 0;
    virtual void setAttributes(std::string_view path, std::uint32_t attributes) = 0;
    virtual std::uint64_t length(std::string_view path) = 0;
    virtual void copy(std::string_view from, std::string_view to, bool overwrite) = 0;
    virtual void remove(std::string_view path) = 0;
    virtual void createFolder(std::string_view path) = 0;
    // Renames, replacing an existing target in one step (the atomic rewrite of stores).
    virtual void replace(std::string_view from, std::string_view to) = 0;
    virtual std::uint64_t freeSpace(std::string_view root) = 0;
    // A folder's last-write time in the back-end's own units. It changes when an entry is
    // made, removed or renamed in the folder (not when a file in it is written), though two
    // changes close together may share one value. Raise 76 when the folder is missing.
    virtual std::uint64_t folderStamp(std::string_view folder) = 0;
};

}  // namespace orvex::platform
