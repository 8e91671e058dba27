// Startup.cpp: Main and its helpers, in the order start-up runs them.
#include "app/Startup.h"

#include <memory>

#include "core/AppState.h"
#include "core/Config.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "pages/MainWindow.h"
#include "pages/PageReports.h"
#include "pages/ScanPage.h"
#include "pages/ScreenNotice.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "scan/MemoryScan.h"
#include "scan/RunProc.h"
#include "ui/Language.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

std::unique_ptr<platform::FileHelper>& FileHelperObject() {
    static std::unique_ptr<platform::FileHelper> helper;
    return helper;
}

bool IsQuietRequest(const std::string& commandLine) {
    return commandLine == "/q" || commandLine == "/Q" || commandLine == "\\q" ||
           commandLine == "\\Q";
}

// A copy of this executable already runs for this user: it holds a mutex named after the
// executable's path and the user, which this process tries to take for its lifetime.
bool PreviousInstanceRunning() {
    auto& sys = platform::Sys();
    std::string name =
        "OrvexSentry.Instance." + sys.executablePath() + "." + sys.userName().value_or("");
    for (char& c : name) {
        if (c == '\\' || c == ':' || c == '/') c = '_';
    }
    const auto result = sys.createMutex(name, false);
    return result.alreadyExisted;
}

std::string ExecutableFolder() {
    return platform::FileHelper::FolderPart(platform::Sys().executablePath());
}

// AppPath is the executable's folder without the closing backslash.
std::string AppPathText() {
    std::string folder = ExecutableFolder();
    if (!folder.empty() && folder.back() == '\\') folder.pop_back();
    return folder;
}

std::string ExecutableName() {
    std::string file = platform::FileHelper::FilePart(platform::Sys().executablePath());
    const auto dot = file.rfind('.');
    if (dot != std::string::npos) file.erase(dot);
    return file + ".exe";
}

void MeasureScreen() {
    auto& app = App();
    app.ScreenDpi = platform::Sys().screenDpiY();
    app.HighDpi = ToVb(app.ScreenDpi > 96);
}

void ShowScreenReaderNotice() {
    if (platform::Sys().screenReaderActive()) frmScreen().Show(true);
}

void WriteStartRegistryValues() {
    platform::RegistryHelper reg;
    reg.RootKey(platform::Hive::LocalMachine);
    reg.KeyPath(config::kProductKey);
    auto& app = App();
    reg.SetValue("Executable", ExecutableName());
    app.DataFolder = reg.GetValue("DataPath", "") + "\\";
    reg.SetValue("InstalledPath", app.AppPath + "\\");
}

// Starts a waiting application update in our place; true when it was handed over.
bool HandOverApplicationUpdate() {
    if (!ApplicationUpdatePending()) return false;
    const std::string updater = App().AppPath + "\\update\\ovsupdate.exe";
    if (!SharedFileHelper().FileExists(updater)) return false;
    platform::Processes().start(updater, "", true);
    platform::RegistryHelper reg;
    reg.RootKey(platform::Hive::LocalMachine);
    reg.KeyPath(config::kProductKey);
    reg.SetValue("Application Update", "");
    return true;
}

void CreateSingleInstanceMutex() {
    const auto family = clsRunProc().OS();
    const char* name = nullptr;
    if (family == oskind::kNt5) {
        name = config::kMutexNameNt5;
    } else if (family >= oskind::kNt351 && family <= oskind::kWin9x) {
        name = config::kMutexNameOther;
    }
    if (name != nullptr) App().SingleInstanceMutex = platform::Sys().createMutex(name, true).handle;
}

// Screen width and height in twips, as the window positions are kept.
int ToTwips(int pixels) {
    const int dpi = App().ScreenDpi > 0 ? App().ScreenDpi : 96;
    return pixels * 1440 / dpi;
}

void PlaceFirstWindow() {
    auto& app = App();
    app.WindowLeft = ToTwips(platform::Sys().screenWidthPixels()) / 2 - 1000;
    app.WindowCentreY = ToTwips(platform::Sys().screenHeightPixels()) / 2;
}

void PrepareBackupFolder() {
    auto& app = App();
    app.AppPath = AppPathText();
    app.BackupFolder = app.AppPath + "\\Backup";
    if (!SharedFileHelper().FolderExists(app.BackupFolder))
        platform::Files().createFolder(app.BackupFolder);
}

void ChooseUpdateEndpoint(const std::string& commandLine) {
    auto& app = App();
    app.TestMode = VbFalse;
    app.UpdateBaseUrl = config::kUpdateBaseUrl;
    if (commandLine == "/test") {
        app.UpdateBaseUrl = config::kTestUpdateBaseUrl;
        app.TestMode = VbTrue;
    }
}

void OpenFirstWindow(const std::string& commandLine) {
    if (commandLine == "/scan") {
        App().ScanOnStart = VbTrue;
        frmmain().actions();
        frmmain().Hide();
        frmscan().ScanItems();
        return;
    }
    frmmain().Show();
    frmmain().actions();
}

}  // namespace

platform::FileHelper& SharedFileHelper() {
    auto& helper = FileHelperObject();
    if (!helper) helper = std::make_unique<platform::FileHelper>();
    return *helper;
}

bool ApplicationUpdatePending() {
    platform::RegistryHelper reg;
    reg.RootKey(platform::Hive::LocalMachine);
    reg.KeyPath(config::kProductKey);
    if (!reg.KeyExists()) return false;
    return reg.GetValue("Application Update", "") == "1";
}

int EnumWindowProc(const platform::TopWindow& window, long /*userValue*/) {
    ui::DoEvents();
    if (InStr(1, window.title, config::kProductTitle, Compare::Text) > 0 &&
        IsTrue(App().QuietMode) && window.pid != platform::Processes().currentProcessId()) {
        platform::Sys().postClose(window.handle);
    }
    ui::DoEvents();
    return 1;
}

void EnumALLWindows() {
    for (const auto& window : platform::Sys().topLevelWindows())
        EnumWindowProc(window, 0);
}

StartOutcome Main(const std::string& commandLine) {
    InstallPageReports();
    Procedure proc("Module1", "Main");
    StartOutcome outcome = StartOutcome::Running;
    proc.Run([&] {
        FileHelperObject() = std::make_unique<platform::FileHelper>();
        if (IsQuietRequest(commandLine)) {
            App().QuietMode = VbTrue;
            EnumALLWindows();
            FileHelperObject().reset();
            outcome = StartOutcome::QuietExit;
            return;
        }
        if (PreviousInstanceRunning()) {
            outcome = StartOutcome::SecondInstance;
            return;
        }
        App().AppPath = AppPathText();
        proc.Step([] { RemoveSurveillanceAgent(); });
        proc.Step([] { MeasureScreen(); });
        proc.Step([] { ShowScreenReaderNotice(); });
        proc.Step([] { WriteStartRegistryValues(); });
        bool handedOver = false;
        proc.Step([&] { handedOver = HandOverApplicationUpdate(); });
        if (handedOver) {
            outcome = StartOutcome::UpdateHandedOver;
            return;
        }
        proc.Step([] { CreateSingleInstanceMutex(); });
        ui::Host().SetMousePointer(ui::pointer::kArrow);
        proc.Step([] { LoadLanguageAtStart(); });
        proc.Step([] { PlaceFirstWindow(); });
        proc.Step([] { PrepareBackupFolder(); });
        proc.Step([] {
            App().WindowsFolder = platform::Sys().windowsFolder();
            App().SystemFolder = platform::Sys().systemFolder();
        });
        // The language is loaded a second time; the repeat is harmless and kept.
        proc.Step([] { LoadLanguageAtStart(); });
        ChooseUpdateEndpoint(commandLine);
        ui::Host().SetMousePointer(ui::pointer::kHourglass);
        proc.Step([&] { OpenFirstWindow(commandLine); });
    });
    return outcome;
}

}  // namespace orvex
