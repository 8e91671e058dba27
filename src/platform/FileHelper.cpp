// FileHelper.cpp: the file helper object over the installed FileSystem.
#include "platform/FileHelper.h"

#include "platform/AnsiCase.h"
#include "platform/Failure.h"
#include "platform/Platform.h"

namespace orvex::platform {
namespace {

// Runs a file system call and tells whether it went through.
template <class F>
bool Succeeds(F&& call) {
    try {
        call();
        return true;
    } catch (const Failure&) {
        return false;
    }
}

constexpr int kMaxPadWidth = 65535;

}  // namespace

FileHelper::FileHelper() : FileHelper(Files()) {}

FileHelper::FileHelper(FileSystem& files) : files_(files) {}

bool FileHelper::FileExists(const std::string& path) {
    return !path.empty() && files_.fileExists(path);
}

bool FileHelper::FolderExists(const std::string& path) {
    return !path.empty() && files_.folderExists(path);
}

std::vector<std::string> FileHelper::Drives() {
    return files_.drives();
}

int FileHelper::DriveType(const std::string& root) {
    return files_.driveType(root);
}

std::string FileHelper::FolderPart(const std::string& path) {
    const std::size_t cut = path.rfind('\\');
    return cut == std::string::npos ? std::string() : path.substr(0, cut + 1);
}

std::string FileHelper::FilePart(const std::string& path) {
    const std::size_t cut = path.rfind('\\');
    return cut == std::string::npos ? path : path.substr(cut + 1);
}

std::string FileHelper::ShortName(const std::string& path) {
    std::string result = path;
    Succeeds([&] { result = files_.shortPath(path); });
    return result;
}

std::string FileHelper::LongName(const std::string& path) {
    std::string result;
    Succeeds([&] { result = files_.longPath(path); });
    return result;
}

bool FileHelper::ClearAttributes(const std::string& path) {
    return Succeeds([&] { files_.setAttributes(path, attr::kNormal); });
}

bool FileHelper::Copy(const std::string& from, const std::string& to, bool overwrite) {
    return Succeeds([&] { files_.copy(from, to, overwrite); });
}

bool FileHelper::Delete(const std::string& path) {
    return Succeeds([&] { files_.remove(path); });
}

std::int64_t FileHelper::Length(const std::string& path) {
    std::int64_t length = -1;
    Succeeds([&] { length = static_cast<std::int64_t>(files_.length(path)); });
    return length;
}

std::uint64_t FileHelper::FreeSpace(const std::string& root) {
    std::uint64_t bytes = 0;
    Succeeds([&] { bytes = files_.freeSpace(root); });
    return bytes;
}

std::string FileHelper::Pad(const std::string& text, int width, const std::string& side,
                            const std::string& fill) {
    if (width > kMaxPadWidth) Raise(failure::kInvalidCall);
    if (width <= static_cast<int>(text.size())) return text;
    const std::string padding(static_cast<std::size_t>(width) - text.size(),
                              fill.empty() ? ' ' : fill.front());
    if (EqualsNoCase(side, "RIGHT")) return padding + text;
    if (EqualsNoCase(side, "LEFT")) return text + padding;
    return text;
}

}  // namespace orvex::platform
