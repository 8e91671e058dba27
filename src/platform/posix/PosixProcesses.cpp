// PosixProcesses.cpp: processes on Linux through /proc and signals.
#include "platform/posix/PosixProcesses.h"

#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fstream>
#include <utility>

extern char** environ;

namespace orvex::platform {
namespace {

std::optional<std::uint32_t> PidOf(const char* name) {
    std::uint32_t pid = 0;
    if (*name == '\0') return std::nullopt;
    for (const char* c = name; *c != '\0'; ++c) {
        if (*c < '0' || *c > '9' || pid > (UINT32_MAX - 9) / 10) return std::nullopt;
        pid = pid * 10 + static_cast<std::uint32_t>(*c - '0');
    }
    return pid;
}

std::string ReadLink(const std::string& link) {
    std::string buffer(PATH_MAX, '\0');
    ssize_t n = ::readlink(link.c_str(), buffer.data(), buffer.size());
    if (n <= 0) return {};
    buffer.resize(static_cast<std::size_t>(n));
    return buffer;
}

std::string BaseName(const std::string& path) {
    std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string CommandName(std::uint32_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(in, name);
    return name;
}

// Everything the spawning child needs, built before the fork so that the child only
// spawns and leaves.
class SpawnPlan {
  public:
    SpawnPlan(std::string path, std::vector<std::string> args, bool hidden)
        : path_(std::move(path)), args_(std::move(args)) {
        argv_.push_back(path_.data());
        for (auto& a : args_)
            argv_.push_back(a.data());
        argv_.push_back(nullptr);
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawnattr_init(&attr_);
        if (hidden) {
            // No window to hide here: a hidden start gets no terminal instead.
            for (int fd = 0; fd <= 2; ++fd) {
                ::posix_spawn_file_actions_addopen(&actions_, fd, "/dev/null",
                                                   fd == 0 ? O_RDONLY : O_WRONLY, 0);
            }
        }
        sigset_t none, defaults;
        sigemptyset(&none);
        sigemptyset(&defaults);
        for (int sig : {SIGPIPE, SIGCHLD, SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
            sigaddset(&defaults, sig);
        }
        ::posix_spawnattr_setsigmask(&attr_, &none);
        ::posix_spawnattr_setsigdefault(&attr_, &defaults);
        ::posix_spawnattr_setflags(
            &attr_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    }
    ~SpawnPlan() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attr_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    int spawn() {
        pid_t pid = 0;
        return ::posix_spawn(&pid, path_.c_str(), &actions_, &attr_, argv_.data(), environ);
    }

  private:
    std::string path_;
    std::vector<std::string> args_;
    std::vector<char*> argv_;
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attr_;
};

}  // namespace

std::vector<std::string> SplitArguments(std::string_view line) {
    std::vector<std::string> out;
    std::string current;
    bool inArgument = false, quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        char c = line[i];
        if ((c == ' ' || c == '\t') && !quoted) {
            if (inArgument) out.push_back(std::exchange(current, {}));
            inArgument = false;
            continue;
        }
        inArgument = true;
        if (c == '\\') {
            std::size_t run = 0;
            while (i < line.size() && line[i] == '\\')
                ++run, ++i;
            bool beforeQuote = i < line.size() && line[i] == '"';
            current.append(beforeQuote ? run / 2 : run, '\\');
            if (beforeQuote && run % 2 == 1) {
                current += '"';
            } else {
                --i;  // the quote, or the next character, is read by the loop
            }
            continue;
        }
        if (c == '"') {
            quoted = !quoted;
            continue;
        }
        current += c;
    }
    if (inArgument) out.push_back(std::move(current));
    return out;
}

PosixProcesses::PosixProcesses(PathMap paths) : paths_(std::move(paths)) {}

// The engine picks its code paths by the Windows family. NT 5 is the one this system fits:
// processes listed with ids and full paths, deletes deferred through the system rather than
// a WININIT.INI, "Global\" mutex names. A newer version would count as unknown and turn
// the memory scan off.
std::optional<OsVersion> PosixProcesses::osVersion() {
    return OsVersion{2, 5, 1};
}

std::vector<std::uint32_t> PosixProcesses::pids() const {
    std::vector<std::uint32_t> out;
    DIR* dir = ::opendir("/proc");
    if (dir == nullptr) return out;
    while (const dirent* e = ::readdir(dir)) {
        if (auto pid = PidOf(e->d_name)) out.push_back(*pid);
    }
    ::closedir(dir);
    std::sort(out.begin(), out.end());
    return out;
}

std::string PosixProcesses::exeOf(std::uint32_t pid) const {
    return ReadLink("/proc/" + std::to_string(pid) + "/exe");
}

std::vector<ProcessEntry> PosixProcesses::listWithPaths() {
    std::vector<ProcessEntry> out;
    for (std::uint32_t pid : pids()) {
        std::string exe = exeOf(pid);
        auto path = exe.empty() ? std::nullopt : paths_.toEngine(exe);
        out.push_back({pid, path.value_or("")});
    }
    return out;
}

std::vector<std::string> PosixProcesses::listImageNames() {
    std::vector<std::string> out;
    for (std::uint32_t pid : pids()) {
        std::string exe = exeOf(pid);
        std::string name = exe.empty() ? CommandName(pid) : BaseName(exe);
        if (!name.empty()) out.push_back(std::move(name));
    }
    return out;
}

bool PosixProcesses::terminate(std::uint32_t pid) {
    // 0 and values past INT_MAX would signal a whole group or every process.
    if (pid == 0 || pid > static_cast<std::uint32_t>(INT_MAX)) return false;
    return ::kill(static_cast<pid_t>(pid), SIGTERM) == 0;
}

std::uint32_t PosixProcesses::currentProcessId() {
    return static_cast<std::uint32_t>(::getpid());
}

// The program is started from a short-lived middle child that leaves at once, so it is
// adopted by init, which reaps it: nothing of ours is left as a zombie, and no SIGCHLD
// handler is needed in a program that may have its own.
bool PosixProcesses::start(std::string_view path, std::string_view arguments, bool hidden) {
    auto native = paths_.toNative(path);
    if (!native || native->empty()) return false;
    SpawnPlan plan(*native, SplitArguments(arguments), hidden);
    pid_t middle = ::fork();
    if (middle < 0) return false;
    if (middle == 0) ::_exit(plan.spawn() == 0 ? 0 : 1);
    int status = 0;
    while (::waitpid(middle, &status, 0) < 0) {
        if (errno != EINTR) return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::uint32_t PosixProcesses::waitForThread(ThreadHandle, std::uint32_t) {
    constexpr std::uint32_t kWaitFailed = 0xFFFFFFFF;
    return kWaitFailed;
}

void PosixProcesses::exitThread(std::uint32_t code) {
    pthread_exit(reinterpret_cast<void*>(static_cast<std::uintptr_t>(code)));
}

}  // namespace orvex::platform
