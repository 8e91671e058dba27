// Win32Processes.cpp: process lists the two ways Windows offers them (PSAPI with paths,
// Toolhelp with image names), ending and starting processes.
#include "platform/win32/Win32Processes.h"

// The psapi.dll exports, which every NT system from 4.0 on has; the K32 forms of newer
// headers would not load on older systems.
#define PSAPI_VERSION 1

#include <windows.h>
// After windows.h, which they build on.
#include <psapi.h>
#include <tlhelp32.h>

#include "platform/win32/Win32Text.h"

namespace orvex::platform::win32 {
namespace {

// Bounds on what a broken or hostile system could make us allocate or walk.
constexpr DWORD kMaxProcessIds = 1u << 20;
constexpr std::size_t kMaxSnapshotEntries = 1u << 20;

class Handle {
  public:
    explicit Handle(HANDLE handle) : handle_(handle) {}
    ~Handle() {
        if (valid()) CloseHandle(handle_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    bool valid() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

  private:
    HANDLE handle_;
};

// Every process id, with a buffer grown until the list no longer fills it.
std::vector<DWORD> ProcessIds() {
    std::vector<DWORD> ids(1024);
    for (;;) {
        DWORD bytes = 0;
        const DWORD capacity = static_cast<DWORD>(ids.size() * sizeof(DWORD));
        if (!EnumProcesses(ids.data(), capacity, &bytes)) return {};
        if (bytes < capacity || ids.size() >= kMaxProcessIds) {
            ids.resize(bytes / sizeof(DWORD));
            return ids;
        }
        ids.resize(ids.size() * 2);
    }
}

// The path of a process's first module; empty when the process or its modules can't be read.
std::string FirstModulePath(DWORD pid) {
    Handle process(OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, pid));
    if (!process.valid()) return "";
    HMODULE first = nullptr;
    DWORD needed = 0;
    if (!EnumProcessModules(process.get(), &first, sizeof first, &needed)) return "";
    char path[MAX_PATH + 1] = {};
    DWORD length = GetModuleFileNameExA(process.get(), first, path, MAX_PATH);
    return std::string(path, length);
}

}  // namespace

std::optional<OsVersion> Win32Processes::osVersion() {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    const BOOL ok = GetVersionExA(&info);
#pragma GCC diagnostic pop
    if (!ok) return std::nullopt;
    return OsVersion{info.dwPlatformId, info.dwMajorVersion, info.dwMinorVersion};
}

std::vector<ProcessEntry> Win32Processes::listWithPaths() {
    std::vector<ProcessEntry> out;
    for (DWORD pid : ProcessIds())
        out.push_back({pid, FirstModulePath(pid)});
    return out;
}

std::vector<std::string> Win32Processes::listImageNames() {
    std::vector<std::string> out;
    Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot.valid()) return out;
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32First(snapshot.get(), &entry);
         more && out.size() < kMaxSnapshotEntries; more = Process32Next(snapshot.get(), &entry)) {
        out.push_back(CutAtNul(entry.szExeFile, sizeof entry.szExeFile));
    }
    return out;
}

bool Win32Processes::terminate(std::uint32_t pid) {
    Handle process(OpenProcess(PROCESS_TERMINATE, FALSE, pid));
    return process.valid() && TerminateProcess(process.get(), 0);
}

std::uint32_t Win32Processes::currentProcessId() {
    return GetCurrentProcessId();
}

bool Win32Processes::start(std::string_view path, std::string_view arguments, bool hidden) {
    if (HasNul(path) || HasNul(arguments)) return false;
    std::string commandLine;
    commandLine.append(1, '"').append(path).append(1, '"');
    if (!arguments.empty()) commandLine.append(1, ' ').append(arguments);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    if (hidden) {
        startup.dwFlags = STARTF_USESHOWWINDOW;
        startup.wShowWindow = SW_HIDE;
    }
    PROCESS_INFORMATION started{};
    // A bare program name is searched for; a path is taken as it stands.
    const std::string application(path);
    const bool bareName = application.find_first_of("\\/") == std::string::npos;
    if (!CreateProcessA(bareName ? nullptr : application.c_str(), commandLine.data(), nullptr,
                        nullptr, FALSE, 0, nullptr, nullptr, &startup, &started)) {
        return false;
    }
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return true;
}

LibraryHandle Win32Processes::loadLibrary(std::string_view path) {
    if (HasNul(path)) return 0;
    return reinterpret_cast<LibraryHandle>(LoadLibraryA(std::string(path).c_str()));
}

EntryAddress Win32Processes::entryAddress(LibraryHandle library, std::string_view name) {
    if (HasNul(name)) return 0;
    return reinterpret_cast<EntryAddress>(
        GetProcAddress(reinterpret_cast<HMODULE>(library), std::string(name).c_str()));
}

void Win32Processes::freeLibrary(LibraryHandle library) {
    FreeLibrary(reinterpret_cast<HMODULE>(library));
}

ThreadHandle Win32Processes::startEntryThread(EntryAddress entry) {
    DWORD id = 0;
    return reinterpret_cast<ThreadHandle>(
        CreateThread(nullptr, 0, reinterpret_cast<LPTHREAD_START_ROUTINE>(entry), nullptr, 0, &id));
}

std::uint32_t Win32Processes::waitForThread(ThreadHandle thread, std::uint32_t milliseconds) {
    return WaitForSingleObject(reinterpret_cast<HANDLE>(thread), milliseconds);
}

std::uint32_t Win32Processes::threadExitCode(ThreadHandle thread) {
    DWORD code = 0;
    GetExitCodeThread(reinterpret_cast<HANDLE>(thread), &code);
    return code;
}

void Win32Processes::closeThread(ThreadHandle thread) {
    CloseHandle(reinterpret_cast<HANDLE>(thread));
}

void Win32Processes::exitThread(std::uint32_t code) {
    ExitThread(code);
}

}  // namespace orvex::platform::win32
