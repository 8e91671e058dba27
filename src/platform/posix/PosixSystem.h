// PosixSystem.h: clock, identity, folders, named mutexes and profile strings on POSIX;
// the screen, window and shell services of a machine without a desktop.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include "platform/FileSystem.h"
#include "platform/System.h"
#include "platform/posix/PosixFd.h"
#include "platform/posix/PosixFiles.h"

namespace orvex::platform {

// The local time of the machine.
LocalTime LocalNow();

// The en-US forms: "11/22/2026" and "7:14:05 PM".
std::string UsShortDate(const LocalTime& t);
std::string UsLongTime(const LocalTime& t);

// The lock file that stands for a named mutex: one per name, in $XDG_RUNTIME_DIR or /tmp.
std::string MutexLockPath(std::string_view name);

class PosixSystem : public System {
  public:
    // `files` reads and writes the profile files; `paths` maps the executable's path.
    PosixSystem(FileSystem& files, PathMap paths = PathMap("/"));
    ~PosixSystem() override;

    std::uint32_t tickCount() override;
    LocalTime now() override;
    std::string shortDateText(const LocalTime& t) override { return UsShortDate(t); }
    std::string longTimeText(const LocalTime& t) override { return UsLongTime(t); }
    std::optional<std::string> computerName() override;
    std::optional<std::string> userName() override;
    std::string windowsFolder() override { return "C:\\Windows"; }
    std::string systemFolder() override { return "C:\\Windows\\System32"; }
    std::optional<std::string> environment(std::string_view name) override;
    std::vector<std::string> environmentStrings() override;
    std::string executablePath() override;

    MutexResult createMutex(std::string_view name, bool initialOwner) override;
    MutexHandle openMutex(std::string_view name) override;
    bool releaseMutex(MutexHandle handle) override;
    void closeHandle(MutexHandle handle) override;

    bool shellExecute(std::string_view, std::string_view, std::string_view, int) override {
        return false;  // no desktop shell to open documents with
    }

    // Kept in movesAtRestart() for the life of the object: nothing here restarts.
    bool moveFileAtRestart(std::string_view from, std::string_view to,
                           std::uint32_t flags) override;
    std::string lastErrorText() override;  // the text of errno
    void enableShutdownPrivilege() override {}
    bool exitWindows(std::uint32_t) override { return false; }  // never ends the session

    const std::vector<RestartMove>& movesAtRestart() const { return moves_; }

    int screenWidthPixels() override { return 1024; }
    int screenHeightPixels() override { return 768; }
    int screenDpiY() override { return 96; }
    bool screenReaderActive() override { return false; }

    std::vector<TopWindow> topLevelWindows() override { return {}; }
    bool postClose(std::uintptr_t) override { return false; }

    std::string readProfileString(std::string_view section, std::string_view key,
                                  std::string_view defaultValue, std::size_t capacity,
                                  std::string_view file) override;
    bool writeProfileString(std::string_view section, std::string_view key, std::string_view value,
                            std::string_view file) override;

  private:
    struct MutexSlot {
        Fd lock;
        bool held = false;
    };
    MutexHandle keep(Fd lock, bool held);

    FileSystem& files_;
    PathMap paths_;
    std::mutex guard_;
    std::map<MutexHandle, MutexSlot> mutexes_;
    MutexHandle nextHandle_ = 1;
    std::vector<RestartMove> moves_;
};

}  // namespace orvex::platform
