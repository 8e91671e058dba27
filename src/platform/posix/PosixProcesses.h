// PosixProcesses.h: the process list from /proc, SIGTERM for terminate and posix_spawn for
// start, with image paths in the engine's "C:\" form.
#pragma once

#include <string>
#include <vector>

#include "platform/Processes.h"
#include "platform/posix/PosixFiles.h"

namespace orvex::platform {

class PosixProcesses : public ProcessApi {
  public:
    explicit PosixProcesses(PathMap paths = PathMap("/"));

    std::optional<OsVersion> osVersion() override;
    std::vector<ProcessEntry> listWithPaths() override;
    std::vector<std::string> listImageNames() override;
    bool terminate(std::uint32_t pid) override;
    std::uint32_t currentProcessId() override;
    bool start(std::string_view path, std::string_view arguments, bool hidden) override;

    // Windows libraries don't load here: every file is refused, so nothing further runs.
    LibraryHandle loadLibrary(std::string_view) override { return 0; }
    EntryAddress entryAddress(LibraryHandle, std::string_view) override { return 0; }
    void freeLibrary(LibraryHandle) override {}
    ThreadHandle startEntryThread(EntryAddress) override { return 0; }
    std::uint32_t waitForThread(ThreadHandle, std::uint32_t) override;
    std::uint32_t threadExitCode(ThreadHandle) override { return 0; }
    void closeThread(ThreadHandle) override {}
    [[noreturn]] void exitThread(std::uint32_t code) override;

  private:
    std::vector<std::uint32_t> pids() const;
    std::string exeOf(std::uint32_t pid) const;  // native, empty when unreadable

    PathMap paths_;
};

// Splits a Windows command line the way C programs there receive it: blanks separate,
// double quotes group, backslashes escape a quote only.
std::vector<std::string> SplitArguments(std::string_view commandLine);

}  // namespace orvex::platform
