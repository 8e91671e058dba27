// Startup.h: Main, the program's start-up, and the routines only it uses.
#pragma once

#include <string>

#include "platform/FileHelper.h"
#include "platform/System.h"

namespace orvex {

// How start-up ended: with the windows up and the message loop to run, or with the
// process to end at once.
enum class StartOutcome {
    Running,
    QuietExit,         // "/q" closed the other copies
    SecondInstance,    // a copy of this program already runs
    UpdateHandedOver,  // a waiting application update was started in our place
};

// Runs start-up for the whole argument string (compared as one value, case-sensitively).
StartOutcome Main(const std::string& commandLine);

// The one file helper of the run, made by Main before anything else.
platform::FileHelper& SharedFileHelper();

// True when the product key's "Application Update" value is exactly "1".
bool ApplicationUpdatePending();

// Closes, by title, every top-level window of other processes that names the product.
void EnumALLWindows();
// One window of that walk; always 1, so the walk never stops early.
int EnumWindowProc(const platform::TopWindow& window, long userValue);

}  // namespace orvex
