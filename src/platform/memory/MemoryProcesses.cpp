// MemoryProcesses.cpp: the scripted process table of the memory back-end.
#include <algorithm>

#include "platform/AnsiCase.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform::memory {
namespace {
std::string FileNameOf(const std::string& path) {
    const std::size_t cut = path.find_last_of("\\/");
    return cut == std::string::npos ? path : path.substr(cut + 1);
}
}  // namespace

MemoryProcesses::Process* MemoryProcesses::find(std::uint32_t pid) {
    auto it = std::find_if(table_.begin(), table_.end(),
                           [pid](const Process& p) { return p.pid == pid; });
    return it == table_.end() ? nullptr : &*it;
}

std::vector<ProcessEntry> MemoryProcesses::listWithPaths() {
    std::vector<ProcessEntry> out;
    for (const auto& p : table_)
        out.push_back(ProcessEntry{p.pid, p.imagePath});
    return out;
}

std::vector<std::string> MemoryProcesses::listImageNames() {
    std::vector<std::string> out;
    for (const auto& p : table_)
        out.push_back(p.imageName);
    return out;
}

bool MemoryProcesses::terminate(std::uint32_t pid) {
    Process* p = find(pid);
    if (p == nullptr || p->isProtected) return false;
    terminated_.push_back(pid);
    removeProcess(pid);
    return true;
}

bool MemoryProcesses::start(std::string_view path, std::string_view arguments, bool hidden) {
    starts_.push_back(StartCall{std::string(path), std::string(arguments), hidden});
    return startResult_;
}

std::uint32_t MemoryProcesses::addProcess(std::string imagePath, std::string imageName,
                                          std::uint32_t pid) {
    if (pid == 0) {
        while (find(nextPid_) != nullptr)
            nextPid_ += 4;
        pid = nextPid_;
        nextPid_ += 4;
    }
    if (imageName.empty()) imageName = FileNameOf(imagePath);
    removeProcess(pid);
    table_.push_back(Process{pid, std::move(imagePath), std::move(imageName)});
    return pid;
}

void MemoryProcesses::removeProcess(std::uint32_t pid) {
    std::erase_if(table_, [pid](const Process& p) { return p.pid == pid; });
}

bool MemoryProcesses::running(std::uint32_t pid) const {
    return std::any_of(table_.begin(), table_.end(),
                       [pid](const Process& p) { return p.pid == pid; });
}

void MemoryProcesses::protect(std::uint32_t pid, bool isProtected) {
    if (Process* p = find(pid)) p->isProtected = isProtected;
}

void MemoryProcesses::addComponent(std::string path, MemoryComponent component) {
    components_.emplace_back(std::move(path), std::move(component));
}

LibraryHandle MemoryProcesses::loadLibrary(std::string_view path) {
    for (const auto& [known, component] : components_) {
        if (!EqualsNoCase(known, path)) continue;
        const LibraryHandle handle = newHandle();
        libraries_[handle] = Library{known, component};
        return handle;
    }
    return 0;
}

EntryAddress MemoryProcesses::entryAddress(LibraryHandle library, std::string_view name) {
    const auto loaded = libraries_.find(library);
    if (loaded == libraries_.end()) return 0;
    const auto& exports = loaded->second.component.exports;
    if (std::find(exports.begin(), exports.end(), name) == exports.end()) return 0;
    const EntryAddress entry = newHandle();
    entries_[entry] = Entry{library, std::string(name)};
    return entry;
}

void MemoryProcesses::freeLibrary(LibraryHandle library) {
    libraries_.erase(library);
}

ThreadHandle MemoryProcesses::startEntryThread(EntryAddress entry) {
    const auto known = entries_.find(entry);
    if (failThreadStart_ || known == entries_.end()) return 0;
    const Library& library = libraries_.at(known->second.library);
    entriesRun_.push_back(library.path + "|" + known->second.name);
    const ThreadHandle thread = newHandle();
    threads_[thread] = Thread{library.component.runMilliseconds, library.component.exitCode, false};
    return thread;
}

std::uint32_t MemoryProcesses::waitForThread(ThreadHandle thread, std::uint32_t milliseconds) {
    constexpr std::uint32_t kWaitTimeout = 258;
    constexpr std::uint32_t kWaitFailed = 0xFFFFFFFF;
    const auto known = threads_.find(thread);
    if (known == threads_.end()) return kWaitFailed;
    if (known->second.runMilliseconds >= milliseconds) return kWaitTimeout;
    known->second.ended = true;
    return kThreadEnded;
}

std::uint32_t MemoryProcesses::threadExitCode(ThreadHandle thread) {
    constexpr std::uint32_t kStillActive = 259;
    const Thread& known = threads_.at(thread);
    return known.ended ? known.exitCode : kStillActive;
}

void MemoryProcesses::closeThread(ThreadHandle thread) {
    threads_.erase(thread);
}

void MemoryProcesses::exitThread(std::uint32_t code) {
    throw ThreadExited{code};
}

std::vector<std::string> MemoryProcesses::loadedLibraries() const {
    std::vector<std::string> paths;
    for (const auto& [handle, library] : libraries_)
        paths.push_back(library.path);
    return paths;
}

}  // namespace orvex::platform::memory
