// System.h: the remaining operating-system services the program uses: clock, identity,
// folders, mutexes, shell, screen, windows and INI files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::platform {

struct LocalTime {
    int year = 1899, month = 12, day = 30;
    int hour = 0, minute = 0, second = 0;
};

// Whether the moment exists on the calendar; Windows formats nothing for one that doesn't.
inline bool IsRealMoment(const LocalTime& t) {
    static const int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = t.year % 4 == 0 && (t.year % 100 != 0 || t.year % 400 == 0);
    if (t.month < 1 || t.month > 12 || t.day < 1 || t.day > kDays[t.month - 1]) return false;
    if (t.month == 2 && t.day == 29 && !leap) return false;
    return t.hour >= 0 && t.hour < 24 && t.minute >= 0 && t.minute < 60 && t.second >= 0 &&
           t.second < 60;
}

struct TopWindow {
    std::uintptr_t handle = 0;
    std::string title;
    std::uint32_t pid = 0;
};

using MutexHandle = std::uintptr_t;  // 0 is no handle

// The MoveFileEx flags that hand a file to the next start of the system.
namespace movefile {
inline constexpr std::uint32_t kReplaceExisting = 0x1;
inline constexpr std::uint32_t kDelayUntilReboot = 0x4;
}  // namespace movefile

// A file operation left for the next start of the system.
struct RestartMove {
    std::string from;
    std::string to;  // empty: delete at the restart
    std::uint32_t flags = 0;
};

// The ExitWindowsEx flags.
namespace exitwindows {
inline constexpr std::uint32_t kReboot = 0x2;
inline constexpr std::uint32_t kForce = 0x4;
}  // namespace exitwindows

struct MutexResult {
    MutexHandle handle = 0;
    bool alreadyExisted = false;
};

class System {
  public:
    virtual ~System() = default;

    virtual std::uint32_t tickCount() = 0;
    virtual LocalTime now() = 0;
    // The locale's short date and long time texts of a moment (en-US forms off Windows).
    virtual std::string shortDateText(const LocalTime& t) = 0;
    virtual std::string longTimeText(const LocalTime& t) = 0;
    virtual std::optional<std::string> computerName() = 0;
    virtual std::optional<std::string> userName() = 0;
    virtual std::string windowsFolder() = 0;
    virtual std::string systemFolder() = 0;
    virtual std::optional<std::string> environment(std::string_view name) = 0;
    // The process's variables as "NAME=value" strings, in the order the system keeps them.
    virtual std::vector<std::string> environmentStrings() = 0;
    // Full path of the running executable.
    virtual std::string executablePath() = 0;

    virtual MutexResult createMutex(std::string_view name, bool initialOwner) = 0;
    virtual MutexHandle openMutex(std::string_view name) = 0;
    virtual bool releaseMutex(MutexHandle handle) = 0;
    virtual void closeHandle(MutexHandle handle) = 0;

    // ShellExecute with the given verb; true on success.
    virtual bool shellExecute(std::string_view verb, std::string_view file,
                              std::string_view parameters, int showCommand) = 0;

    // MoveFileEx: with kDelayUntilReboot the system moves or deletes the file at its next
    // start; an empty `to` deletes. True when the system took the request.
    virtual bool moveFileAtRestart(std::string_view from, std::string_view to,
                                   std::uint32_t flags) = 0;
    // The system's text for the last error of a call on this thread (200 characters at most).
    virtual std::string lastErrorText() = 0;
    // Enables the shutdown privilege in this process's token; what the calls say is unread.
    virtual void enableShutdownPrivilege() = 0;
    // ExitWindowsEx; true when the system took the request.
    virtual bool exitWindows(std::uint32_t flags) = 0;

    virtual int screenWidthPixels() = 0;
    virtual int screenHeightPixels() = 0;
    virtual int screenDpiY() = 0;  // LOGPIXELSY of the desktop
    virtual bool screenReaderActive() = 0;

    virtual std::vector<TopWindow> topLevelWindows() = 0;
    virtual bool postClose(std::uintptr_t window) = 0;

    // GetPrivateProfileString/WritePrivateProfileString semantics; `capacity` is the
    // buffer size in characters, so the value comes back cut to capacity - 1.
    virtual std::string readProfileString(std::string_view section, std::string_view key,
                                          std::string_view defaultValue, std::size_t capacity,
                                          std::string_view file) = 0;
    virtual bool writeProfileString(std::string_view section, std::string_view key,
                                    std::string_view value, std::string_view file) = 0;
};

}  // namespace orvex::platform
