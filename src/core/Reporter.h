// Reporter.h: where the engine finds the installed implementation of one of its reporting
// interfaces. The pages install theirs for the windows, the command line its own; with
// none installed, reports go to the interface itself, whose methods do nothing.
#pragma once

namespace orvex {

template <class Interface>
class Reporter {
  public:
    static Interface& Get() { return Installed() != nullptr ? *Installed() : Silent(); }
    // nullptr puts the silent one back.
    static void Install(Interface* report) { Installed() = report; }
    static Interface* Current() { return Installed(); }

  private:
    static Interface*& Installed() {
        static Interface* report = nullptr;
        return report;
    }
    static Interface& Silent() {
        static Interface silent;
        return silent;
    }
};

// Installs a report for the lifetime of the guard and puts the previous one back after.
template <class Interface>
class ScopedReport {
  public:
    explicit ScopedReport(Interface& report) : previous_(Reporter<Interface>::Current()) {
        Reporter<Interface>::Install(&report);
    }
    ~ScopedReport() { Reporter<Interface>::Install(previous_); }
    ScopedReport(const ScopedReport&) = delete;
    ScopedReport& operator=(const ScopedReport&) = delete;

  private:
    Interface* previous_;
};

}  // namespace orvex
