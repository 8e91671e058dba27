// Win32System.h: clock, identity, folders, mutexes, shell, screen, windows and INI files
// on kernel32, user32, gdi32, shell32 and mpr.
#pragma once

#include "platform/System.h"

namespace orvex::platform::win32 {

class Win32System : public System {
  public:
    std::uint32_t tickCount() override;
    LocalTime now() override;
    std::string shortDateText(const LocalTime& t) override;
    std::string longTimeText(const LocalTime& t) override;
    std::optional<std::string> computerName() override;
    std::optional<std::string> userName() override;
    std::string windowsFolder() override;
    std::string systemFolder() override;
    std::optional<std::string> environment(std::string_view name) override;
    std::vector<std::string> environmentStrings() override;
    std::string executablePath() override;

    MutexResult createMutex(std::string_view name, bool initialOwner) override;
    MutexHandle openMutex(std::string_view name) override;
    bool releaseMutex(MutexHandle handle) override;
    void closeHandle(MutexHandle handle) override;

    bool shellExecute(std::string_view verb, std::string_view file, std::string_view parameters,
                      int showCommand) override;

    bool moveFileAtRestart(std::string_view from, std::string_view to,
                           std::uint32_t flags) override;
    std::string lastErrorText() override;
    void enableShutdownPrivilege() override;
    bool exitWindows(std::uint32_t flags) override;

    int screenWidthPixels() override;
    int screenHeightPixels() override;
    int screenDpiY() override;
    bool screenReaderActive() override;

    std::vector<TopWindow> topLevelWindows() override;
    bool postClose(std::uintptr_t window) override;

    std::string readProfileString(std::string_view section, std::string_view key,
                                  std::string_view defaultValue, std::size_t capacity,
                                  std::string_view file) override;
    bool writeProfileString(std::string_view section, std::string_view key, std::string_view value,
                            std::string_view file) override;
};

}  // namespace orvex::platform::win32
