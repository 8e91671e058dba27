// HeadlessHost.cpp: the scripted user interface, and the installed host.
#include "ui/HeadlessHost.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "ui/Form.h"

namespace orvex::ui {
namespace {

HeadlessHost& Fallback() {
    static HeadlessHost fallback;
    return fallback;
}

UiHost*& Installed() {
    static UiHost* host = &Fallback();
    return host;
}

}  // namespace

UiHost& Host() {
    return *Installed();
}

void InstallHost(UiHost* host) {
    Installed() = host;
}

void ResetHost() {
    Fallback() = HeadlessHost{};
    Installed() = &Fallback();
}

ScopedHost::ScopedHost(UiHost& host) : previous_(&Host()) {
    InstallHost(&host);
}

ScopedHost::~ScopedHost() {
    InstallHost(previous_);
}

void HeadlessHost::DoEvents() {
    const std::int64_t number = ++yields_;
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

std::int64_t HeadlessHost::DoEvents(std::int64_t count, const std::function<bool()>& stopped) {
    if (everyYield_) return UiHost::DoEvents(count, stopped);
    std::int64_t done = 0;
    while (done < count) {
        // Nothing can happen before the next scripted action, so the yields up to it are
        // only counted.
        std::int64_t next = std::numeric_limits<std::int64_t>::max();
        for (const auto& [number, action] : atYield_)
            if (number > yields_ && number < next) next = number;
        const std::int64_t quiet = std::min(count - done, next - yields_ - 1);
        yields_ += quiet;
        done += quiet;
        if (done == count) break;
        DoEvents();
        ++done;
        if (stopped()) break;
    }
    return done;
}

void HeadlessHost::AtYield(std::int64_t number, std::function<void()> action) {
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
