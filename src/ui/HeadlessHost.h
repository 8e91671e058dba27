// HeadlessHost.h: the user interface without a screen. Tests script the user through it:
// act at the Nth yield, answer message boxes, close modal forms.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "ui/UiHost.h"

namespace orvex::ui {

class HeadlessHost : public UiHost {
  public:
    struct Message {
        std::string prompt;
        int buttons = 0;
        std::string title;
    };

    void DoEvents() override;
    // Counts the yields between scripted actions without making them one by one.
    std::int64_t DoEvents(std::int64_t count, const std::function<bool()>& stopped) override;
    void ShowForm(Form& form, bool modal) override;
    void HideForm(Form& form) override;
    void FormUnloaded(Form& form) override;
    int MsgBox(const std::string& prompt, int buttons, const std::string& title) override;
    void SetMousePointer(int pointer) override { mousePointer_ = pointer; }

    // Runs `action` at the yield with this 1-based number.
    void AtYield(std::int64_t number, std::function<void()> action);
    // Runs `action` at every yield, with its number.
    void OnEveryYield(std::function<void(std::int64_t)> action) { everyYield_ = std::move(action); }
    // The answer to the next message box; when none is queued, `defaultAnswer`.
    void Answer(int result) { answers_.push_back(result); }
    void DefaultAnswer(int result) { defaultAnswer_ = result; }
    // What a modal show does; by default the form is hidden again at once.
    void OnModal(std::function<void(Form&)> action) { onModal_ = std::move(action); }

    std::int64_t Yields() const { return yields_; }
    int MousePointer() const { return mousePointer_; }
    const std::vector<Message>& Messages() const { return messages_; }
    const std::vector<std::string>& Shown() const { return shown_; }

  private:
    std::int64_t yields_ = 0;
    int mousePointer_ = pointer::kDefault;
    int defaultAnswer_ = msgbox::kOk;
    std::vector<std::pair<std::int64_t, std::function<void()>>> atYield_;
    std::function<void(std::int64_t)> everyYield_;
    std::deque<int> answers_;
    std::function<void(Form&)> onModal_;
    std::vector<Message> messages_;
    std::vector<std::string> shown_;
};

// Installs a host for the lifetime of the guard.
class ScopedHost {
  public:
    explicit ScopedHost(UiHost& host);
    ~ScopedHost();
    ScopedHost(const ScopedHost&) = delete;
    ScopedHost& operator=(const ScopedHost&) = delete;

  private:
    UiHost* previous_;
};

}  // namespace orvex::ui
