// MemorySystem.cpp: the scripted clock, identity, mutexes, shell, screen and windows of
// the memory back-end.
#include <algorithm>

#include "platform/AnsiCase.h"
#include "platform/IniFile.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform::memory {

bool MutexTable::exists(std::string_view name) const {
    return named.find(name) != named.end();
}

MemorySystem::MemorySystem(FileSystem& files, std::shared_ptr<MutexTable> mutexes)
    : files_(files), mutexes_(std::move(mutexes)), id_(mutexes_->nextId++) {}

std::uint32_t MemorySystem::tickCount() {
    const std::uint32_t now = ticks_;
    ticks_ += tickStep_;
    return now;
}

std::string MemorySystem::shortDateText(const LocalTime& t) {
    if (!IsRealMoment(t)) return "";
    return std::to_string(t.month) + "/" + std::to_string(t.day) + "/" + std::to_string(t.year);
}

std::string MemorySystem::longTimeText(const LocalTime& t) {
    if (!IsRealMoment(t)) return "";
    const int hour12 = t.hour % 12 == 0 ? 12 : t.hour % 12;
    auto two = [](int n) {
        std::string digits = n < 10 ? "0" : "";
        return digits += std::to_string(n);
    };
    return std::to_string(hour12) + ":" + two(t.minute) + ":" + two(t.second) +
           (t.hour < 12 ? " AM" : " PM");
}

std::optional<std::string> MemorySystem::environment(std::string_view name) {
    for (const auto& [key, value] : environment_)
        if (EqualsNoCase(key, name)) return value;
    return std::nullopt;
}

std::vector<std::string> MemorySystem::environmentStrings() {
    std::vector<std::string> strings;
    for (const auto& [key, value] : environment_)
        strings.push_back(key + "=" + value);
    return strings;
}

void MemorySystem::setEnvironment(std::string_view name, std::optional<std::string> value) {
    std::erase_if(environment_, [name](const auto& e) { return EqualsNoCase(e.first, name); });
    if (value) environment_.emplace_back(std::string(name), std::move(*value));
}

MutexHandle MemorySystem::newHandle(std::string_view name, bool named) {
    const MutexHandle handle = static_cast<MutexHandle>(mutexes_->nextId++) * 4;
    handles_[handle] = HandleEntry{std::string(name), named};
    return handle;
}

MutexTable::Mutex* MemorySystem::mutexOf(MutexHandle handle) {
    auto it = handles_.find(handle);
    if (it == handles_.end()) return nullptr;
    if (!it->second.named) return &unnamed_[handle];
    auto m = mutexes_->named.find(it->second.name);
    return m == mutexes_->named.end() ? nullptr : &m->second;
}

// As CreateMutex: an existing named mutex is opened, and then the request for initial
// ownership is ignored.
MutexResult MemorySystem::createMutex(std::string_view name, bool initialOwner) {
    MutexResult result;
    const bool named = !name.empty();
    result.alreadyExisted = named && mutexes_->exists(name);
    if (named) ++mutexes_->named[std::string(name)].handles;
    result.handle = newHandle(name, named);
    MutexTable::Mutex& m = *mutexOf(result.handle);
    if (initialOwner && !result.alreadyExisted) {
        m.owner = id_;
        m.recursion = 1;
    }
    return result;
}

MutexHandle MemorySystem::openMutex(std::string_view name) {
    if (name.empty() || !mutexes_->exists(name)) return 0;
    const MutexHandle handle = newHandle(name, true);
    ++mutexes_->named.find(name)->second.handles;
    return handle;
}

bool MemorySystem::releaseMutex(MutexHandle handle) {
    MutexTable::Mutex* m = mutexOf(handle);
    if (m == nullptr || m->owner != id_ || m->recursion == 0) return false;
    if (--m->recursion == 0) m->owner = 0;
    return true;
}

void MemorySystem::closeHandle(MutexHandle handle) {
    auto it = handles_.find(handle);
    if (it == handles_.end()) return;
    if (!it->second.named) {
        unnamed_.erase(handle);
    } else {
        auto m = mutexes_->named.find(it->second.name);
        if (m != mutexes_->named.end() && --m->second.handles <= 0) mutexes_->named.erase(m);
    }
    handles_.erase(it);
}

bool MemorySystem::holdsMutex(std::string_view name) const {
    return std::any_of(handles_.begin(), handles_.end(),
                       [name](const auto& h) { return h.second.named && h.second.name == name; });
}

bool MemorySystem::shellExecute(std::string_view verb, std::string_view file,
                                std::string_view parameters, int showCommand) {
    shellCalls_.push_back(
        ShellCall{std::string(verb), std::string(file), std::string(parameters), showCommand});
    return shellResult_;
}

bool MemorySystem::moveFileAtRestart(std::string_view from, std::string_view to,
                                     std::uint32_t flags) {
    if (refuseMoves_) return false;
    moves_.push_back(RestartMove{std::string(from), std::string(to), flags});
    return true;
}

std::string MemorySystem::lastErrorText() {
    ++errorTextReads_;
    return "The operation completed successfully.";
}

bool MemorySystem::exitWindows(std::uint32_t flags) {
    exitCalls_.push_back(ExitWindowsCall{flags, privilegeRequests_ > 0});
    return true;
}

bool MemorySystem::postClose(std::uintptr_t window) {
    const bool known = std::any_of(windows_.begin(), windows_.end(),
                                   [window](const TopWindow& w) { return w.handle == window; });
    if (known) closeRequests_.push_back(window);
    return known;
}

std::uintptr_t MemorySystem::addWindow(std::string title, std::uint32_t pid) {
    const std::uintptr_t handle = nextWindow_;
    nextWindow_ += 0x10;
    windows_.push_back(TopWindow{handle, std::move(title), pid});
    return handle;
}

void MemorySystem::removeWindow(std::uintptr_t handle) {
    std::erase_if(windows_, [handle](const TopWindow& w) { return w.handle == handle; });
}

std::string MemorySystem::readProfileString(std::string_view section, std::string_view key,
                                            std::string_view defaultValue, std::size_t capacity,
                                            std::string_view file) {
    return ReadProfileString(files_, section, key, defaultValue, capacity, file);
}

bool MemorySystem::writeProfileString(std::string_view section, std::string_view key,
                                      std::string_view value, std::string_view file) {
    return WriteProfileString(files_, section, key, value, file);
}

}  // namespace orvex::platform::memory
