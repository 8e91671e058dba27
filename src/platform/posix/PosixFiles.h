// PosixFiles.h: the file system on POSIX, with the engine's Windows paths mapped onto a
// native folder tree ("C:\" is a root folder, "/" by default).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/FileSystem.h"

namespace orvex::platform {

// Maps the engine's "C:\..." paths onto a native root folder and back. The one drive is
// "C:"; ".." is resolved by the text, as Windows does, and never climbs above the root.
class PathMap {
  public:
    explicit PathMap(std::string root = "/");

    // The native path of an engine path, or nullopt for another drive, a network path
    // or a name with a NUL in it. A path without a drive is taken as relative to the
    // current folder.
    std::optional<std::string> toNative(std::string_view enginePath) const;
    // "/tmp/x" gives "C:\tmp\x" for the root "/"; nullopt when outside the root.
    // A relative native path is taken from the current folder.
    std::optional<std::string> toEngine(std::string_view nativePath) const;
    const std::string& root() const { return root_; }

  private:
    std::string root_;  // absolute, without a closing "/" unless it is "/" itself
};

// The engine form of a native path for the root "/" (the command line's --path).
std::optional<std::string> EnginePathFromNative(std::string_view nativePath);

class PosixFiles : public FileSystem {
  public:
    explicit PosixFiles(std::string root = "/");

    std::unique_ptr<FileStream> open(std::string_view path, OpenMode mode) override;
    bool fileExists(std::string_view path) override;
    bool folderExists(std::string_view path) override;
    std::vector<std::string> drives() override;
    int driveType(std::string_view root) override;
    std::vector<DirEntry> list(std::string_view folder) override;
    std::vector<DirEntry> listNames(std::string_view folder) override;
    std::string shortPath(std::string_view path) override;
    std::string longPath(std::string_view path) override;
    std::uint32_t attributes(std::string_view path) override;
    void setAttributes(std::string_view path, std::uint32_t attributes) override;
    std::uint64_t length(std::string_view path) override;
    void copy(std::string_view from, std::string_view to, bool overwrite) override;
    // Deletes a file, or an empty folder.
    void remove(std::string_view path) override;
    void createFolder(std::string_view path) override;
    void replace(std::string_view from, std::string_view to) override;
    std::uint64_t freeSpace(std::string_view root) override;
    std::uint64_t folderStamp(std::string_view folder) override;

    const PathMap& paths() const { return paths_; }

  private:
    std::string native(std::string_view path) const;

    PathMap paths_;
};

}  // namespace orvex::platform
