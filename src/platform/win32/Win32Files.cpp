// Win32Files.cpp: the file primitives on kernel32. Every Win32 error leaves here as the
// classic failure number of Win32Errors.
#include "platform/win32/Win32Files.h"

#include <windows.h>

#include <limits>

#include "platform/Failure.h"
#include "platform/win32/Win32Errors.h"
#include "platform/win32/Win32Text.h"

namespace orvex::platform::win32 {
namespace {

constexpr int kBadRecordNumber = 63;
// ReadFile and WriteFile take a DWORD count; larger requests go in pieces.
constexpr std::size_t kMaxChunk = 1u << 30;

// A NUL-terminated copy of a path; a NUL inside is no valid file name.
std::string PathZ(std::string_view path) {
    if (HasNul(path)) Raise(failure::kBadFileName);
    return std::string(path);
}

void Check(BOOL ok, bool isFolder = false) {
    if (!ok) RaiseLastError(isFolder);
}

class Win32Stream : public FileStream {
  public:
    Win32Stream(HANDLE handle, bool canRead, bool canWrite)
        : handle_(handle), canRead_(canRead), canWrite_(canWrite) {}
    ~Win32Stream() override { CloseHandle(handle_); }
    Win32Stream(const Win32Stream&) = delete;
    Win32Stream& operator=(const Win32Stream&) = delete;

    std::size_t read(char* buffer, std::size_t size) override {
        if (!canRead_) Raise(failure::kBadFileMode);
        std::size_t total = 0;
        while (total < size) {
            DWORD got = 0;
            DWORD want = static_cast<DWORD>(std::min(size - total, kMaxChunk));
            Check(ReadFile(handle_, buffer + total, want, &got, nullptr));
            if (got == 0) break;
            total += got;
        }
        return total;
    }

    void write(const char* data, std::size_t size) override {
        if (!canWrite_) Raise(failure::kBadFileMode);
        std::size_t total = 0;
        while (total < size) {
            DWORD put = 0;
            DWORD want = static_cast<DWORD>(std::min(size - total, kMaxChunk));
            Check(WriteFile(handle_, data + total, want, &put, nullptr));
            if (put == 0) Raise(failure::kDiskFull);
            total += put;
        }
    }

    void seek(std::uint64_t position) override {
        if (position > static_cast<std::uint64_t>(std::numeric_limits<LONGLONG>::max())) {
            Raise(kBadRecordNumber);
        }
        LARGE_INTEGER to;
        to.QuadPart = static_cast<LONGLONG>(position);
        Check(SetFilePointerEx(handle_, to, nullptr, FILE_BEGIN));
    }

    std::uint64_t position() override {
        LARGE_INTEGER zero{}, at{};
        Check(SetFilePointerEx(handle_, zero, &at, FILE_CURRENT));
        return static_cast<std::uint64_t>(at.QuadPart);
    }

    std::uint64_t size() override {
        LARGE_INTEGER bytes{};
        Check(GetFileSizeEx(handle_, &bytes));
        return static_cast<std::uint64_t>(bytes.QuadPart);
    }

    void flush() override {
        if (canWrite_) Check(FlushFileBuffers(handle_));
    }

  private:
    HANDLE handle_;
    bool canRead_;
    bool canWrite_;
};

struct ModeFlags {
    DWORD access;
    DWORD disposition;
};

ModeFlags FlagsOf(OpenMode mode) {
    switch (mode) {
        case OpenMode::Read:
            return {GENERIC_READ, OPEN_EXISTING};
        case OpenMode::Write:
            return {GENERIC_WRITE, CREATE_ALWAYS};
        case OpenMode::Append:
        case OpenMode::ReadWrite:
            return {GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS};
    }
    Raise(failure::kBadFileMode);
}

// Closes a directory search when it goes out of scope.
class FindHandle {
  public:
    explicit FindHandle(HANDLE handle) : handle_(handle) {}
    ~FindHandle() {
        if (valid()) FindClose(handle_);
    }
    FindHandle(const FindHandle&) = delete;
    FindHandle& operator=(const FindHandle&) = delete;
    bool valid() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

  private:
    HANDLE handle_;
};

bool EndsWithSeparator(std::string_view path) {
    return !path.empty() && (path.back() == '\\' || path.back() == '/');
}

DirEntry EntryOf(const WIN32_FIND_DATAA& found) {
    DirEntry entry;
    entry.name = CutAtNul(found.cFileName, sizeof found.cFileName);
    entry.shortName = CutAtNul(found.cAlternateFileName, sizeof found.cAlternateFileName);
    entry.attributes = found.dwFileAttributes;
    entry.size = (static_cast<std::uint64_t>(found.nFileSizeHigh) << 32) | found.nFileSizeLow;
    return entry;
}

bool IsDotEntry(const std::string& name) {
    return name == "." || name == "..";
}

template <class Call>
std::string PathText(Call call) {
    std::string out;
    DWORD error = CallGrowing(call, out);
    if (error != 0) Raise(FailureFromWin32(error));
    return out;
}

}  // namespace

std::unique_ptr<FileStream> Win32Files::open(std::string_view path, OpenMode mode) {
    const std::string file = PathZ(path);
    const ModeFlags flags = FlagsOf(mode);
    HANDLE handle = CreateFileA(file.c_str(), flags.access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                nullptr, flags.disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) RaiseLastError();
    // Append opens for reading too, to learn the size, but its stream only writes.
    const bool reads = (flags.access & GENERIC_READ) != 0 && mode != OpenMode::Append;
    auto stream = std::make_unique<Win32Stream>(handle, reads, (flags.access & GENERIC_WRITE) != 0);
    if (mode == OpenMode::Append) stream->seek(stream->size());
    return stream;
}

bool Win32Files::fileExists(std::string_view path) {
    if (HasNul(path)) return false;
    DWORD found = GetFileAttributesA(std::string(path).c_str());
    return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool Win32Files::folderExists(std::string_view path) {
    if (HasNul(path)) return false;
    DWORD found = GetFileAttributesA(std::string(path).c_str());
    return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::vector<std::string> Win32Files::drives() {
    std::string roots;
    if (CallGrowing([](char* b, DWORD n) { return GetLogicalDriveStringsA(n, b); }, roots) != 0) {
        return {};
    }
    std::vector<std::string> out;
    for (std::size_t at = 0; at < roots.size();) {
        std::size_t end = roots.find('\0', at);
        if (end == std::string::npos) end = roots.size();
        if (end > at) out.push_back(roots.substr(at, end - at));
        at = end + 1;
    }
    return out;
}

int Win32Files::driveType(std::string_view root) {
    if (HasNul(root)) return drivetype::kNoRoot;
    std::string path(root);
    if (!EndsWithSeparator(path)) path += '\\';
    return static_cast<int>(GetDriveTypeA(path.c_str()));
}

std::vector<DirEntry> Win32Files::list(std::string_view folder) {
    std::string pattern = PathZ(folder);
    if (!pattern.empty() && !EndsWithSeparator(pattern)) pattern += '\\';
    pattern += '*';
    WIN32_FIND_DATAA found;
    FindHandle search(FindFirstFileA(pattern.c_str(), &found));
    std::vector<DirEntry> out;
    if (!search.valid()) {
        DWORD error = GetLastError();
        bool empty = error == ERROR_FILE_NOT_FOUND || error == ERROR_NO_MORE_FILES;
        if (empty && folderExists(folder)) return out;  // a root with no entries at all
        Raise(FailureFromWin32(error, true));
    }
    do {
        DirEntry entry = EntryOf(found);
        if (!IsDotEntry(entry.name)) out.push_back(std::move(entry));
    } while (FindNextFileA(search.get(), &found));
    if (GetLastError() != ERROR_NO_MORE_FILES) RaiseLastError(true);
    return out;
}

std::string Win32Files::shortPath(std::string_view path) {
    const std::string file = PathZ(path);
    return PathText([&](char* b, DWORD n) { return GetShortPathNameA(file.c_str(), b, n); });
}

std::string Win32Files::longPath(std::string_view path) {
    const std::string file = PathZ(path);
    return PathText([&](char* b, DWORD n) { return GetLongPathNameA(file.c_str(), b, n); });
}

std::uint32_t Win32Files::attributes(std::string_view path) {
    DWORD found = GetFileAttributesA(PathZ(path).c_str());
    if (found == INVALID_FILE_ATTRIBUTES) RaiseLastError();
    return found;
}

void Win32Files::setAttributes(std::string_view path, std::uint32_t attributes) {
    Check(SetFileAttributesA(PathZ(path).c_str(), attributes));
}

std::uint64_t Win32Files::length(std::string_view path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    Check(GetFileAttributesExA(PathZ(path).c_str(), GetFileExInfoStandard, &data));
    return (static_cast<std::uint64_t>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

void Win32Files::copy(std::string_view from, std::string_view to, bool overwrite) {
    Check(CopyFileA(PathZ(from).c_str(), PathZ(to).c_str(), overwrite ? FALSE : TRUE));
}

void Win32Files::remove(std::string_view path) {
    Check(DeleteFileA(PathZ(path).c_str()));
}

void Win32Files::createFolder(std::string_view path) {
    if (CreateDirectoryA(PathZ(path).c_str(), nullptr)) return;
    // An existing folder is in the way (75), as MkDir says, not a file to overwrite (58).
    const DWORD error = GetLastError();
    Raise(error == ERROR_ALREADY_EXISTS ? failure::kPathFileAccess : FailureFromWin32(error, true));
}

void Win32Files::replace(std::string_view from, std::string_view to) {
    Check(MoveFileExA(PathZ(from).c_str(), PathZ(to).c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

std::uint64_t Win32Files::freeSpace(std::string_view root) {
    ULARGE_INTEGER available{};
    Check(GetDiskFreeSpaceExA(PathZ(root).c_str(), &available, nullptr, nullptr), true);
    return available.QuadPart;
}

std::uint64_t Win32Files::folderStamp(std::string_view folder) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    Check(GetFileAttributesExA(PathZ(folder).c_str(), GetFileExInfoStandard, &data), true);
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) Raise(failure::kPathNotFound);
    return (static_cast<std::uint64_t>(data.ftLastWriteTime.dwHighDateTime) << 32) |
           data.ftLastWriteTime.dwLowDateTime;
}

}  // namespace orvex::platform::win32
