// Win32Processes.h: the process list and process control on kernel32 and PSAPI.
#pragma once

#include "platform/Processes.h"

namespace orvex::platform::win32 {

class Win32Processes : public ProcessApi {
  public:
    std::optional<OsVersion> osVersion() override;
    std::vector<ProcessEntry> listWithPaths() override;
    std::vector<std::string> listImageNames() override;
    bool terminate(std::uint32_t pid) override;
    std::uint32_t currentProcessId() override;
    bool start(std::string_view path, std::string_view arguments, bool hidden) override;

    LibraryHandle loadLibrary(std::string_view path) override;
    EntryAddress entryAddress(LibraryHandle library, std::string_view name) override;
    void freeLibrary(LibraryHandle library) override;
    ThreadHandle startEntryThread(EntryAddress entry) override;
    std::uint32_t waitForThread(ThreadHandle thread, std::uint32_t milliseconds) override;
    std::uint32_t threadExitCode(ThreadHandle thread) override;
    void closeThread(ThreadHandle thread) override;
    [[noreturn]] void exitThread(std::uint32_t code) override;
};

}  // namespace orvex::platform::win32
