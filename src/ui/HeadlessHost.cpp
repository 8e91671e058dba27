// HeadlessHost.cpp: the scripted user interface, and the installed host.
#include "ui/HeadlessHost.h"

#include <utility>

#include "ui/Form.h"

namespace orvex::ui {
namespace {

UiHost*& Installed() {
    static HeadlessHost fallback;
    static UiHost* host = &fallback;
    return host;
}

}  // namespace

UiHost& Host() {
    return *Installed();
}

void InstallHost(UiHost* host) {
    Installed() = host;
}

ScopedHost::ScopedHost(UiHost& host) : previous_(&Host()) {
    InstallHost(&host);
}

ScopedHost::~ScopedHost() {
    InstallHost(previous_);
}

void HeadlessHost::DoEvents() {
    const int number = ++yields_;
    if (everyYield_) everyYield_(number);
    // Actions are taken out before they run, so an action may yield again safely.
    for (std::size_t i = 0; i < atYield_.size(); ++i) {
        if (atYield_[i].first != number) continue;
        auto action = std::move(atYield_[i].second);
        atYield_.erase(atYield_.begin() + static_cast<std::ptrdiff_t>(i));
        action();
        return;
    }
}

void HeadlessHost::AtYield(int number, std::function<void()> action) {
    atYield_.emplace_back(number, std::move(action));
}

void HeadlessHost::ShowForm(Form& form, bool modal) {
    form.Visible = true;
    shown_.push_back(form.Name);
    if (!modal) return;
    if (onModal_) {
        onModal_(form);
    } else {
        form.Visible = false;
    }
}

void HeadlessHost::HideForm(Form& form) {
    form.Visible = false;
}

void HeadlessHost::FormUnloaded(Form&) {}

int HeadlessHost::MsgBox(const std::string& prompt, int buttons, const std::string& title) {
    messages_.push_back({prompt, buttons, title});
    if (answers_.empty()) return defaultAnswer_;
    const int answer = answers_.front();
    answers_.pop_front();
    return answer;
}

}  // namespace orvex::ui
