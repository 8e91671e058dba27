// MemoryProcesses.cpp: the scripted process table of the memory back-end.
#include <algorithm>

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

}  // namespace orvex::platform::memory
