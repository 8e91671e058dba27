// WinMain.cpp: the Windows program. Installs the Win32 back-end and runs start-up; until
// the windows are rendered, the forms live in the headless host and the program ends once
// start-up is done.
#include <windows.h>

#include <string>

#include "app/Startup.h"
#include "core/AppState.h"
#include "platform/Platform.h"
#include "ui/Form.h"
#include "ui/HeadlessHost.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR commandLine, int) {
    auto host = orvex::platform::MakeHostPlatform();
    orvex::platform::ScopedPlatform installed(host->view());
    orvex::ui::HeadlessHost ui;
    orvex::ui::ScopedHost uiInstalled(ui);
    const auto outcome = orvex::Main(commandLine != nullptr ? commandLine : "");
    if (outcome == orvex::StartOutcome::Running) orvex::ReleaseSingleInstanceMutex();
    orvex::ui::ResetForms();
    return 0;
}
