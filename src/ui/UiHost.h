// UiHost.h: what needs a screen. The Win32 renderer implements it with real windows; the
// headless host runs the same logic with none, for the command line and for tests.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace orvex::ui {

class Form;

// Message box buttons and answers, with the Windows numbers.
namespace msgbox {
inline constexpr int kOkOnly = 0;
inline constexpr int kOkCancel = 1;
inline constexpr int kYesNo = 4;
inline constexpr int kQuestion = 32;
inline constexpr int kExclamation = 48;
inline constexpr int kInformation = 64;
inline constexpr int kOk = 1;
inline constexpr int kCancel = 2;
inline constexpr int kYes = 6;
inline constexpr int kNo = 7;
}  // namespace msgbox

namespace pointer {
inline constexpr int kDefault = 0;
inline constexpr int kArrow = 1;
inline constexpr int kHourglass = 11;
}  // namespace pointer

class UiHost {
  public:
    virtual ~UiHost() = default;
    // Lets pending events run; long loops call it between items.
    virtual void DoEvents() = 0;
    // Yields up to `count` times, asking `stopped` after each; returns the yields made. A
    // walk over a large table yields once per record, and this lets a host do that in bulk.
    virtual std::int64_t DoEvents(std::int64_t count, const std::function<bool()>& stopped) {
        std::int64_t done = 0;
        while (done < count) {
            DoEvents();
            ++done;
            if (stopped()) break;
        }
        return done;
    }
    virtual void ShowForm(Form& form, bool modal) = 0;
    virtual void HideForm(Form& form) = 0;
    // Called before a form's instance is destroyed.
    virtual void FormUnloaded(Form& form) = 0;
    virtual int MsgBox(const std::string& prompt, int buttons, const std::string& title) = 0;
    virtual void SetMousePointer(int pointer) = 0;
    // The program's End: a host with windows ends the process here; one that returns lets
    // `End` unwind to whoever runs the program.
    virtual void EndProgram() {}
};

// Thrown by `End` when the host lets the program's end unwind: the command line and the
// tests catch it where the program would have ended.
struct ProgramEnded {};

// The installed host; a headless one until a program installs another.
UiHost& Host();
void InstallHost(UiHost* host);
// Puts a fresh headless host in place of whatever is installed.
void ResetHost();

// Ends the program at once, as the wizard's exits do; nothing after it runs.
[[noreturn]] inline void End() {
    Host().EndProgram();
    throw ProgramEnded{};
}

// Yields to the user interface.
inline void DoEvents() {
    Host().DoEvents();
}

// Yields `count` times unless `stopped` turns true on the way; the yields made.
inline std::int64_t DoEvents(std::int64_t count, const std::function<bool()>& stopped) {
    return Host().DoEvents(count, stopped);
}

}  // namespace orvex::ui
