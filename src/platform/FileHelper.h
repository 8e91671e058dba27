// FileHelper.h: the one file helper object of the run: existence tests, drives, path
// parts, short and long names, attributes, copies and the text padding the Winsock repair
// uses. Built on the installed FileSystem.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/FileSystem.h"

namespace orvex::platform {

class FileHelper {
  public:
    FileHelper();  // on the installed back-end
    explicit FileHelper(FileSystem& files);

    bool FileExists(const std::string& path);
    bool FolderExists(const std::string& path);
    std::vector<std::string> Drives();
    int DriveType(const std::string& root);  // 3 for a fixed disk
    // "C:\a\b.txt" gives "C:\a\" (with the closing backslash) and "b.txt".
    static std::string FolderPart(const std::string& path);
    static std::string FilePart(const std::string& path);
    // The 8.3 form of an existing path; a path that cannot be resolved comes back as it
    // stands, so that "NUL" stays "NUL" in a WININIT.INI line.
    std::string ShortName(const std::string& path);
    // The long form of an existing path; empty text when it cannot be resolved (callers
    // keep their old text when the long form comes out shorter).
    std::string LongName(const std::string& path);
    bool ClearAttributes(const std::string& path);
    bool Copy(const std::string& from, const std::string& to, bool overwrite = true);
    bool Delete(const std::string& path);
    // -1 when the file cannot be read.
    std::int64_t Length(const std::string& path);
    std::uint64_t FreeSpace(const std::string& root);
    // Pad("7", 12, "RIGHT", "0") gives "000000000007"; "LEFT" pads on the right.
    static std::string Pad(const std::string& text, int width, const std::string& side,
                           const std::string& fill);

    FileSystem& fs() { return files_; }

  private:
    FileSystem& files_;
};

}  // namespace orvex::platform
