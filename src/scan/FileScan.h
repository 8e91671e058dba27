// FileScan.h: the file scan: colFiles walks a folder tree, ScumFile judges one file by its
// digest and its name, JustExt and MD5File are the small helpers around them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Vb.h"

namespace orvex {

// Walks a drive or a folder below it and judges each file as it is met; no list of files
// is built.
class colFiles {
  public:
    // `root` is a drive such as "c:" without a closing backslash; `relative` is the folder
    // below it, empty at the top or beginning with a backslash. Subfolders are visited
    // before a folder's own files. `status` is kept for the callers' sake; it says nothing.
    void LoadFiles(const std::string& root, const std::string& relative, std::int32_t& status);
    void LoadFiles(const std::string& root, const std::string& relative = "");

    // The member collection, which the walk leaves empty.
    std::int32_t Count() const { return static_cast<std::int32_t>(items_.size()); }
    void Clear() { items_.clear(); }
    void Remove(std::int32_t index);

  private:
    std::vector<std::string> items_;
};

// True when the file is recognised by its digest or, through ExclusionRoutine, by its
// name. `fileName` lower-case without path, `folder` with its closing backslash.
// `testOnly` true reports nothing but suspects.
VbBool ScumFile(const std::string& fileName, const std::string& folder, VbBool testOnly);

// The text behind the last ".", lower-cased; "" for a name without one.
std::string JustExt(const std::string& fileName);

// The file's MD5 as 32 lower-case hex digits; a text holding "FILE NOT FOUND" when the
// file cannot be read.
std::string MD5File(const std::string& path);

inline constexpr const char* kMd5FileNotFound = "FILE NOT FOUND";

}  // namespace orvex
