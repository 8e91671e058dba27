// PosixFiles.cpp: POSIX file primitives behind the engine's Windows paths.
#include "platform/posix/PosixFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <vector>

#include "platform/Failure.h"
#include "platform/posix/PosixFd.h"

namespace orvex::platform {
namespace {

using Parts = std::vector<std::string>;

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

// Splits at either separator and resolves "." and ".." by the text; ".." at the top
// stays at the top, as on Windows.
void AppendParts(std::string_view path, Parts& parts) {
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = start;
        while (end < path.size() && !IsSeparator(path[end]))
            ++end;
        std::string_view part = path.substr(start, end - start);
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
        } else if (!part.empty() && part != ".") {
            parts.emplace_back(part);
        }
        start = end + 1;
    }
}

std::string Join(const Parts& parts, std::size_t from, char separator) {
    std::string out;
    for (std::size_t i = from; i < parts.size(); ++i) {
        if (i > from) out += separator;
        out += parts[i];
    }
    return out;
}

std::string NativeFromParts(const std::string& root, const Parts& parts) {
    if (parts.empty()) return root;
    return (root == "/" ? "" : root) + "/" + Join(parts, 0, '/');
}

std::optional<std::string> CurrentFolder() {
    std::vector<char> buffer(PATH_MAX);
    if (::getcwd(buffer.data(), buffer.size()) == nullptr) return std::nullopt;
    return std::string(buffer.data());
}

std::string ParentOf(const std::string& native) {
    std::size_t slash = native.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : native.substr(0, slash);
}

std::string NameOf(const std::string& native) {
    std::size_t slash = native.find_last_of('/');
    return slash == std::string::npos ? native : native.substr(slash + 1);
}

bool IsFolder(const std::string& native) {
    struct stat st {};
    return ::stat(native.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

enum class Target { File, Folder };

// A missing name in an existing folder is a missing file (53); a missing folder on the
// way is 76, as Windows tells ERROR_FILE_NOT_FOUND from ERROR_PATH_NOT_FOUND.
[[noreturn]] void RaiseErrno(int err, const std::string& native, Target target) {
    if (err == ENOENT && target == Target::File && IsFolder(ParentOf(native))) {
        Raise(failure::kFileNotFound);
    }
    if (err == EISDIR) Raise(failure::kPathFileAccess);
    if (err == EXDEV) Raise(74);  // "Can't rename with different drive"
    Raise(FailureFromErrno(err, true));
}

// Windows refuses to write, replace or delete a read-only file whoever asks; POSIX lets
// the owner (and root) unlink it. Refusing here keeps both back-ends alike.
void RequireWritable(const std::string& native) {
    struct stat st {};
    if (::lstat(native.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return;
    if ((st.st_mode & S_IWUSR) == 0) Raise(failure::kPathFileAccess);
}

std::uint32_t AttributesOf(const std::string& name, const struct stat& st, bool folder) {
    std::uint32_t a = 0;
    if (folder) a |= attr::kDirectory;
    if ((st.st_mode & S_IWUSR) == 0) a |= attr::kReadOnly;
    if (!name.empty() && name[0] == '.') a |= attr::kHidden;
    return a == 0 ? attr::kNormal : a;
}

// One folder entry. A symbolic link to a folder is reported as a plain entry and never as
// a folder, so that a walk does not follow it: links can form loops (a link to its own
// parent) and would repeat whole trees.
std::optional<DirEntry> EntryOf(int folderFd, const char* name) {
    struct stat own {};
    if (::fstatat(folderFd, name, &own, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
    DirEntry entry;
    entry.name = name;
    if (S_ISLNK(own.st_mode)) {
        struct stat target {};
        if (::fstatat(folderFd, name, &target, 0) != 0) {
            entry.attributes = AttributesOf(entry.name, own, false);  // a dangling link
            return entry;
        }
        bool linkedFolder = S_ISDIR(target.st_mode);
        entry.attributes = AttributesOf(entry.name, target, false);
        entry.size = linkedFolder ? 0 : static_cast<std::uint64_t>(target.st_size);
        return entry;
    }
    bool folder = S_ISDIR(own.st_mode);
    entry.attributes = AttributesOf(entry.name, own, folder);
    entry.size = S_ISREG(own.st_mode) ? static_cast<std::uint64_t>(own.st_size) : 0;
    return entry;
}

class PosixStream : public FileStream {
  public:
    PosixStream(Fd fd, bool canRead, bool canWrite)
        : fd_(std::move(fd)), canRead_(canRead), canWrite_(canWrite) {}

    std::size_t read(char* buffer, std::size_t size) override {
        if (!canRead_) Raise(failure::kBadFileMode);
        std::size_t done = 0;
        while (done < size) {
            ssize_t n = ::read(fd_.get(), buffer + done, size - done);
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) Raise(FailureFromErrno(errno));
            if (n == 0) break;
            done += static_cast<std::size_t>(n);
        }
        return done;
    }

    void write(const char* data, std::size_t size) override {
        if (!canWrite_) Raise(failure::kBadFileMode);
        if (!WriteAll(fd_.get(), data, size)) Raise(FailureFromErrno(errno));
    }

    void seek(std::uint64_t position) override {
        if (position > static_cast<std::uint64_t>(LLONG_MAX)) Raise(failure::kInvalidCall);
        if (::lseek(fd_.get(), static_cast<off_t>(position), SEEK_SET) < 0) {
            Raise(FailureFromErrno(errno));
        }
    }

    std::uint64_t position() override {
        off_t at = ::lseek(fd_.get(), 0, SEEK_CUR);
        if (at < 0) Raise(FailureFromErrno(errno));
        return static_cast<std::uint64_t>(at);
    }

    std::uint64_t size() override {
        struct stat st {};
        if (::fstat(fd_.get(), &st) != 0) Raise(FailureFromErrno(errno));
        return static_cast<std::uint64_t>(st.st_size);
    }

    void flush() override {
        if (canWrite_ && ::fsync(fd_.get()) != 0) Raise(FailureFromErrno(errno));
    }

  private:
    Fd fd_;
    bool canRead_;
    bool canWrite_;
};

int OpenFlags(OpenMode mode) {
    switch (mode) {
        case OpenMode::Read:
            return O_RDONLY;
        case OpenMode::Write:
            return O_WRONLY | O_CREAT | O_TRUNC;
        case OpenMode::Append:
            return O_WRONLY | O_CREAT;
        case OpenMode::ReadWrite:
            return O_RDWR | O_CREAT;
    }
    return O_RDONLY;
}

// Opens a regular file only. O_NONBLOCK keeps a FIFO or a device from blocking the open;
// such files are refused as Windows refuses to open a folder.
Fd OpenRegular(const std::string& native, int flags) {
    Fd fd(::open(native.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666));
    if (!fd) RaiseErrno(errno, native, Target::File);
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0) Raise(FailureFromErrno(errno));
    // O_NONBLOCK is left on: it changes nothing for a regular file.
    if (!S_ISREG(st.st_mode)) Raise(failure::kPathFileAccess);
    return fd;
}

struct stat StatOrRaise(const std::string& native) {
    struct stat st {};
    if (::stat(native.c_str(), &st) != 0) RaiseErrno(errno, native, Target::File);
    return st;
}

bool IsDriveRoot(std::string_view root) {
    if (root.size() < 2 || root.size() > 3) return false;
    if ((root[0] != 'C' && root[0] != 'c') || root[1] != ':') return false;
    return root.size() == 2 || IsSeparator(root[2]);
}

}  // namespace

PathMap::PathMap(std::string root) {
    Parts parts;
    if (!root.empty() && root[0] != '/') AppendParts(CurrentFolder().value_or("/"), parts);
    AppendParts(root, parts);
    root_ = NativeFromParts("/", parts);
}

std::optional<std::string> PathMap::toNative(std::string_view path) const {
    if (path.find('\0') != std::string_view::npos) return std::nullopt;
    if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) return std::nullopt;
    bool hasDrive = path.size() >= 2 && path[1] == ':';
    if (hasDrive && path[0] != 'C' && path[0] != 'c') return std::nullopt;
    Parts parts;
    if (hasDrive || (!path.empty() && IsSeparator(path[0]))) {
        AppendParts(hasDrive ? path.substr(2) : path, parts);
        return NativeFromParts(root_, parts);
    }
    std::string relative(path);
    std::replace(relative.begin(), relative.end(), '\\', '/');
    return relative;
}

std::optional<std::string> PathMap::toEngine(std::string_view nativePath) const {
    if (nativePath.find('\0') != std::string_view::npos) return std::nullopt;
    Parts parts;
    if (nativePath.empty() || nativePath[0] != '/') {
        auto cwd = CurrentFolder();
        if (!cwd) return std::nullopt;
        AppendParts(*cwd, parts);
    }
    AppendParts(nativePath, parts);
    Parts rootParts;
    AppendParts(root_, rootParts);
    if (parts.size() < rootParts.size() ||
        !std::equal(rootParts.begin(), rootParts.end(), parts.begin())) {
        return std::nullopt;
    }
    return "C:\\" + Join(parts, rootParts.size(), '\\');
}

std::optional<std::string> EnginePathFromNative(std::string_view nativePath) {
    return PathMap("/").toEngine(nativePath);
}

PosixFiles::PosixFiles(std::string root) : paths_(std::move(root)) {}

std::string PosixFiles::native(std::string_view path) const {
    auto mapped = paths_.toNative(path);
    if (mapped) return *mapped;
    bool drive = path.size() >= 2 && path[1] == ':' && path.find('\0') == std::string::npos;
    Raise(drive ? failure::kPathNotFound : failure::kBadFileName);
}

std::unique_ptr<FileStream> PosixFiles::open(std::string_view path, OpenMode mode) {
    std::string n = native(path);
    if (mode != OpenMode::Read) RequireWritable(n);
    Fd fd = OpenRegular(n, OpenFlags(mode));
    if (mode == OpenMode::Append && ::lseek(fd.get(), 0, SEEK_END) < 0) {
        Raise(FailureFromErrno(errno));
    }
    bool canRead = mode == OpenMode::Read || mode == OpenMode::ReadWrite;
    bool canWrite = mode != OpenMode::Read;
    return std::make_unique<PosixStream>(std::move(fd), canRead, canWrite);
}

bool PosixFiles::fileExists(std::string_view path) {
    auto n = paths_.toNative(path);
    struct stat st {};
    return n && ::stat(n->c_str(), &st) == 0 && !S_ISDIR(st.st_mode);
}

// Follows links: a path through a linked folder is real. Only list() holds back.
bool PosixFiles::folderExists(std::string_view path) {
    auto n = paths_.toNative(path);
    return n && IsFolder(*n);
}

std::vector<std::string> PosixFiles::drives() {
    return {"C:\\"};
}

int PosixFiles::driveType(std::string_view root) {
    return IsDriveRoot(root) ? drivetype::kFixed : drivetype::kNoRoot;
}

// Reads a folder's entries through `entryOf`, sorted by name.
template <typename EntryOf>
std::vector<DirEntry> ListFolder(const std::string& n, EntryOf entryOf) {
    int fd = ::open(n.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) RaiseErrno(errno, n, Target::Folder);
    DIR* dir = ::fdopendir(fd);
    if (dir == nullptr) {
        int err = errno;
        ::close(fd);
        Raise(FailureFromErrno(err, true));
    }
    std::vector<DirEntry> entries;
    int err = 0;
    for (;;) {
        errno = 0;
        const dirent* e = ::readdir(dir);
        if (e == nullptr) {
            err = errno;
            break;
        }
        std::string_view name = e->d_name;
        if (name == "." || name == "..") continue;
        if (auto entry = entryOf(fd, *e)) entries.push_back(std::move(*entry));
    }
    ::closedir(dir);
    if (err != 0) Raise(FailureFromErrno(err, true));
    std::sort(entries.begin(), entries.end(),
              [](const DirEntry& a, const DirEntry& b) { return a.name < b.name; });
    return entries;
}

std::vector<DirEntry> PosixFiles::list(std::string_view folder) {
    return ListFolder(native(folder),
                      [](int fd, const dirent& e) { return EntryOf(fd, e.d_name); });
}

// The kind from the folder itself where the file system gives it; a link is never a
// folder here, as in list().
std::vector<DirEntry> PosixFiles::listNames(std::string_view folder) {
    return ListFolder(native(folder), [](int fd, const dirent& e) -> std::optional<DirEntry> {
        if (e.d_type == DT_UNKNOWN) return EntryOf(fd, e.d_name);
        DirEntry entry;
        entry.name = e.d_name;
        entry.attributes = e.d_type == DT_DIR ? attr::kDirectory : attr::kNormal;
        return entry;
    });
}

// No 8.3 names here: both forms are the path itself once it is known to exist.
std::string PosixFiles::shortPath(std::string_view path) {
    StatOrRaise(native(path));
    return std::string(path);
}

std::string PosixFiles::longPath(std::string_view path) {
    return shortPath(path);
}

std::uint32_t PosixFiles::attributes(std::string_view path) {
    std::string n = native(path);
    struct stat st = StatOrRaise(n);
    return AttributesOf(NameOf(n), st, S_ISDIR(st.st_mode));
}

void PosixFiles::setAttributes(std::string_view path, std::uint32_t attributes) {
    std::string n = native(path);
    struct stat st = StatOrRaise(n);
    mode_t mode = st.st_mode & 07777;
    mode = (attributes & attr::kReadOnly) ? (mode & ~S_IWUSR) : (mode | S_IWUSR);
    if (::chmod(n.c_str(), mode) != 0) RaiseErrno(errno, n, Target::File);
}

std::uint64_t PosixFiles::length(std::string_view path) {
    struct stat st = StatOrRaise(native(path));
    return S_ISREG(st.st_mode) ? static_cast<std::uint64_t>(st.st_size) : 0;
}

void PosixFiles::copy(std::string_view from, std::string_view to, bool overwrite) {
    std::string source = native(from);
    std::string target = native(to);
    Fd in = OpenRegular(source, O_RDONLY);
    struct stat sourceStat {};
    ::fstat(in.get(), &sourceStat);
    struct stat targetStat {};
    if (::stat(target.c_str(), &targetStat) == 0) {
        if (targetStat.st_dev == sourceStat.st_dev && targetStat.st_ino == sourceStat.st_ino) {
            Raise(failure::kPermissionDenied);  // Windows: the file is in use by the copy
        }
        if (!overwrite) Raise(failure::kFileExists);
        RequireWritable(target);
    }
    Fd out = OpenRegular(target, O_WRONLY | O_CREAT | O_TRUNC);
    ::fchmod(out.get(), sourceStat.st_mode & 0777);
    std::vector<char> buffer(64 * 1024);
    for (;;) {
        ssize_t n = ::read(in.get(), buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) Raise(FailureFromErrno(errno));
        if (n == 0) break;
        if (!WriteAll(out.get(), buffer.data(), static_cast<std::size_t>(n))) {
            Raise(FailureFromErrno(errno));
        }
    }
}

void PosixFiles::remove(std::string_view path) {
    std::string n = native(path);
    struct stat st {};
    if (::lstat(n.c_str(), &st) != 0) RaiseErrno(errno, n, Target::File);
    if (S_ISDIR(st.st_mode)) {
        if (::rmdir(n.c_str()) != 0) {
            if (errno == ENOTEMPTY || errno == EEXIST) Raise(failure::kPathFileAccess);
            RaiseErrno(errno, n, Target::Folder);
        }
        return;
    }
    RequireWritable(n);
    if (::unlink(n.c_str()) != 0) RaiseErrno(errno, n, Target::File);
}

void PosixFiles::createFolder(std::string_view path) {
    std::string n = native(path);
    if (::mkdir(n.c_str(), 0777) == 0) return;
    if (errno == EEXIST) Raise(failure::kPathFileAccess);  // as MkDir on an existing name
    RaiseErrno(errno, n, Target::Folder);
}

// The source is made durable before the rename and the folder after it, so a crash
// leaves either the old or the new content under the target name, never a torn file.
void PosixFiles::replace(std::string_view from, std::string_view to) {
    std::string source = native(from);
    std::string target = native(to);
    {
        Fd in(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
        if (!in) RaiseErrno(errno, source, Target::File);
        ::fsync(in.get());
    }
    RequireWritable(target);
    if (::rename(source.c_str(), target.c_str()) != 0) RaiseErrno(errno, target, Target::File);
    SyncFolder(ParentOf(target));
}

std::uint64_t PosixFiles::freeSpace(std::string_view root) {
    if (!IsDriveRoot(root)) Raise(failure::kPathNotFound);
    struct statvfs vfs {};
    if (::statvfs(paths_.root().c_str(), &vfs) != 0) Raise(FailureFromErrno(errno, true));
    return static_cast<std::uint64_t>(vfs.f_bavail) * vfs.f_frsize;
}

std::uint64_t PosixFiles::folderStamp(std::string_view folder) {
    const std::string n = native(folder);
    struct stat st {};
    if (::stat(n.c_str(), &st) != 0) RaiseErrno(errno, n, Target::Folder);
    if (!S_ISDIR(st.st_mode)) Raise(failure::kPathNotFound);
    return static_cast<std::uint64_t>(st.st_mtim.tv_sec) * 1000000000u +
           static_cast<std::uint64_t>(st.st_mtim.tv_nsec);
}

}  // namespace orvex::platform
