// PosixSystem.cpp: the system services on POSIX.
#include "platform/posix/PosixSystem.h"

#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/IniFile.h"

extern char** environ;

namespace orvex::platform {
namespace {

bool IsPlainNameChar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_';
}

// Kernel object names may hold any byte, "\" included. Other bytes are written as %XX
// so that no two names share a file; a long name keeps its start and a hash of the rest
// to stay within the file system's name limit.
std::string FileNameOf(std::string_view name) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    for (char c : name) {
        if (IsPlainNameChar(c)) {
            out += c;
        } else {
            auto u = static_cast<unsigned char>(c);
            out += '%';
            out += hex[u >> 4];
            out += hex[u & 0xF];
        }
    }
    if (out.size() <= 200) return out;
    std::uint64_t hash = 1469598103934665603ull;  // FNV-1a over the whole name
    for (char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    char tail[20];
    std::snprintf(tail, sizeof tail, "~%016llx", static_cast<unsigned long long>(hash));
    return out.substr(0, 150) + tail;
}

bool IsFolder(const char* path) {
    struct stat st {};
    return path != nullptr && path[0] == '/' && ::stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

// Opens the lock file read-only: a lock needs no write access, so a file made by another
// user can still be shared. `create` makes it when missing.
Fd OpenLock(const std::string& path, bool create) {
    int flags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW;
    Fd fd(::open(path.c_str(), flags | (create ? O_CREAT : 0), 0644));
    // A sticky /tmp may refuse O_CREAT on another user's existing file.
    if (!fd && create && errno == EACCES) fd = Fd(::open(path.c_str(), flags));
    return fd;
}

bool TryLock(const Fd& fd) {
    return ::flock(fd.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

LocalTime PosixSystem::now() {
    return LocalNow();
}

std::string UsShortDate(const LocalTime& t) {
    if (!IsRealMoment(t)) return "";
    char text[48];
    std::snprintf(text, sizeof text, "%d/%d/%04d", t.month, t.day, t.year);
    return text;
}

std::string UsLongTime(const LocalTime& t) {
    if (!IsRealMoment(t)) return "";
    int hour12 = t.hour % 12 == 0 ? 12 : t.hour % 12;
    char text[48];
    std::snprintf(text, sizeof text, "%d:%02d:%02d %s", hour12, t.minute, t.second,
                  t.hour < 12 ? "AM" : "PM");
    return text;
}

std::string MutexLockPath(std::string_view name) {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    std::string folder = IsFolder(runtime) ? runtime : "/tmp";
    return folder + "/orvex-mutex-" + FileNameOf(name) + ".lock";
}

PosixSystem::PosixSystem(FileSystem& files, PathMap paths)
    : files_(files), paths_(std::move(paths)) {}

PosixSystem::~PosixSystem() = default;

std::uint32_t PosixSystem::tickCount() {
    timespec ts{};
    ::clock_gettime(CLOCK_MONOTONIC, &ts);
    auto ms = static_cast<std::uint64_t>(ts.tv_sec) * 1000u +
              static_cast<std::uint64_t>(ts.tv_nsec) / 1000000u;
    return static_cast<std::uint32_t>(ms);  // wraps after 49.7 days, as GetTickCount does
}

LocalTime LocalNow() {
    time_t t = ::time(nullptr);
    tm local{};
    ::localtime_r(&t, &local);
    return LocalTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                     local.tm_hour,        local.tm_min,     local.tm_sec};
}

std::optional<std::string> PosixSystem::computerName() {
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0 || name[0] == '\0') return std::nullopt;
    return std::string(name);
}

std::optional<std::string> PosixSystem::userName() {
    long size = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 &&
        found != nullptr && found->pw_name != nullptr && found->pw_name[0] != '\0') {
        return std::string(found->pw_name);
    }
    return environment("USER");
}

std::optional<std::string> PosixSystem::environment(std::string_view name) {
    std::string key(name);
    if (key.empty() || key.find('\0') != std::string::npos) return std::nullopt;
    const char* value = std::getenv(key.c_str());
    if (value == nullptr) return std::nullopt;
    return std::string(value);
}

std::vector<std::string> PosixSystem::environmentStrings() {
    std::vector<std::string> strings;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        strings.emplace_back(*entry);
    return strings;
}

std::string PosixSystem::executablePath() {
    std::string buffer(4096, '\0');
    ssize_t n = ::readlink("/proc/self/exe", buffer.data(), buffer.size());
    if (n <= 0) return {};
    buffer.resize(static_cast<std::size_t>(n));
    return paths_.toEngine(buffer).value_or("");
}

MutexHandle PosixSystem::keep(Fd lock, bool held) {
    std::lock_guard<std::mutex> hold(guard_);
    MutexHandle handle = nextHandle_++;
    mutexes_[handle] = MutexSlot{std::move(lock), held};
    return handle;
}

// A mutex exists while some process holds the exclusive lock of its file; a creator that
// gets the lock holds it, whether or not it asked for ownership, because an unlocked file
// would not tell other processes that the mutex is there. An unnamed one has no file. flock locks
// belong to one open file, so a second create in the same process sees the first one too, as on
// Windows.
MutexResult PosixSystem::createMutex(std::string_view name, bool initialOwner) {
    if (name.empty()) return {keep(Fd(), initialOwner), false};  // unnamed: nobody shares it
    Fd lock = OpenLock(MutexLockPath(name), true);
    if (!lock) return {};
    bool held = TryLock(lock);
    return MutexResult{keep(std::move(lock), held), !held};
}

MutexHandle PosixSystem::openMutex(std::string_view name) {
    Fd lock = OpenLock(MutexLockPath(name), false);
    if (!lock) return 0;
    if (TryLock(lock)) return 0;  // nobody holds it: no such mutex (closing drops our lock)
    return keep(std::move(lock), false);
}

bool PosixSystem::releaseMutex(MutexHandle handle) {
    std::lock_guard<std::mutex> hold(guard_);
    auto it = mutexes_.find(handle);
    if (it == mutexes_.end() || !it->second.held) return false;
    ::flock(it->second.lock.get(), LOCK_UN);
    it->second.held = false;
    return true;
}

void PosixSystem::closeHandle(MutexHandle handle) {
    std::lock_guard<std::mutex> hold(guard_);
    mutexes_.erase(handle);
}

bool PosixSystem::moveFileAtRestart(std::string_view from, std::string_view to,
                                    std::uint32_t flags) {
    moves_.push_back(RestartMove{std::string(from), std::string(to), flags});
    return true;
}

std::string PosixSystem::lastErrorText() {
    constexpr std::size_t kBuffer = 200;
    return std::string(std::strerror(errno)).substr(0, kBuffer - 1);
}

std::string PosixSystem::readProfileString(std::string_view section, std::string_view key,
                                           std::string_view defaultValue, std::size_t capacity,
                                           std::string_view file) {
    return ReadProfileString(files_, section, key, defaultValue, capacity, file);
}

bool PosixSystem::writeProfileString(std::string_view section, std::string_view key,
                                     std::string_view value, std::string_view file) {
    return WriteProfileString(files_, section, key, value, file);
}

}  // namespace orvex::platform
