// ScanPage.cpp: frmscan and the scan driver: the scans in their fixed order, each behind
// a stop test, then the results page.
#include "pages/ScanPage.h"

#include <cstdlib>
#include <limits>
#include <string>

#include "core/AppState.h"
#include "core/Config.h"
#include "core/DateText.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "pages/DetailsPage.h"
#include "pages/ResultsPage.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "scan/DefinitionLookup.h"
#include "scan/FileScan.h"
#include "scan/MemoryScan.h"
#include "scan/RegistryScan.h"
#include "scan/ScanLogWrite.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kModule = "frmscan";

// Pictures of the form's image set.
constexpr int kStopNormal = 1;
constexpr int kStopDown = 2;
constexpr int kStopHover = 3;
constexpr int kResultsDown = 5;
constexpr int kHighDpiBackground = 14;

std::string_view& Stage() {
    static std::string_view stage;
    return stage;
}

bool FitsLong(std::int64_t value) {
    return value >= std::numeric_limits<std::int32_t>::min() &&
           value <= std::numeric_limits<std::int32_t>::max();
}

bool Stopped() {
    return IsTrue(App().StopRequested);
}

void Pointer(int pointer) {
    ui::Host().SetMousePointer(pointer);
}

// The drives as the drive list shows them: "c:", "d:", ...
std::vector<std::string> DriveEntries() {
    std::vector<std::string> entries;
    for (const std::string& root : platform::FileHelper().Drives())
        entries.push_back(LCase(Left(root, 2)));
    return entries;
}

const std::string& StageText() {
    return Lng(IsTrue(App().ScanOnStart) ? 1220 : 1219);
}

void LogEvent(const char* action) {
    std::int32_t listIndex = 0;
    ScanLogWrite("", "", action, "", "", VbTrue, listIndex);
}

}  // namespace

FrmScan::FrmScan() : Form("frmscan") {}

bool FrmScan::IsCurrent() const {
    return ui::detail::FindLoaded(typeid(FrmScan)) == this;
}

// A scan loop that touches the page after a stop brings it back; a pending stop sends it
// away again before it shows.
void FrmScan::Form_Load() {
    Procedure proc(kModule, "Form_Load");
    proc.Run([&] {
        if (Stopped()) {
            ui::Unload(*this);
            return;
        }
        Left = App().WindowLeft;
        Top = App().WindowCentreY - Height / 2;
        Drive1.Items = DriveEntries();
        if (IsTrue(App().HighDpi)) {
            Picture = kHighDpiBackground;
            Picture1.Width = 160;
            lbl2.Width = 100;
        }
        if (platform::FileHelper().FileExists(App().AppPath + "\\scan.gif")) PlayGif1.Play();
        Image1.Picture = kStopDown;
        lbl2.Caption = StageText();
    });
}

// Closing the page stops the scan and goes to the results; the process goes on.
void FrmScan::Form_Unload(int&) {
    Procedure proc(kModule, "Form_Unload");
    proc.Run([&] {
        PlayGif1.Stop();
        App().ScanRunning = VbFalse;
        App().StopRequested = VbTrue;
        App().WindowLeft = Left;
        App().WindowCentreY = Top + Height / 2;
        frmresults().Show();
        ui::DoEvents();
    });
}

void FrmScan::ScanItems() {
    Show();
    // A pending stop sent the page away as it loaded: there is no page to scan on.
    if (!IsCurrent()) return;
    frmdetails().lvDetails.Rows().clear();
    frmdetails().lvEasy.ListItems.clear();
    App().StopRequested = VbFalse;
    App().ScanStopped = VbFalse;
    Image1.Enabled = true;
    Image1.Picture = kStopNormal;
    ui::DoEvents();
    App().ScumCount = 0;
    App().ThreatCount = 0;
    App().ScanRunning = VbTrue;

    Procedure proc(kModule, "ScanItems");
    proc.Run([&] {
        App().ItemsScanned = 0;
        lbl3.Caption = Lng(28) + std::to_string(App().ItemsScanned);
        Pointer(ui::pointer::kHourglass);
        Image1.Picture = kStopNormal;
        proc.Step([&] { LogEvent("Start F"); });
        if (!Stopped()) lbl2.Caption = StageText();
        RunScans(proc);
        App().ScanRunning = VbFalse;
        if (!Stopped()) lbl2.Caption = Lng(34);
        if (!Stopped()) lbl2.Caption.clear();
        Pointer(ui::pointer::kArrow);
        ui::DoEvents();
        App().ScanRunning = VbFalse;
        // After a stop the page is already gone; unloading it again would only repeat
        // what its unload did.
        proc.Step([&] {
            if (IsCurrent()) ui::Unload(*this);
        });
        proc.Step([&] { frmresults().Show(); });
    });
}

// Each stage only while no stop is pending; a failing stage leaves the next to run.
void FrmScan::RunScans(Procedure& proc) {
    // The definitions stay as they are for the whole scan, so one lookup serves every file.
    const ScopedDefinitionLookup lookup;
    Stage() = "memory";
    if (!Stopped())
        proc.Step([] {
            VbBool scanMode = VbFalse;
            ScanMemory(scanMode);
        });
    Stage() = "registry";
    if (!Stopped()) proc.Step([] { ScumRegistry(); });
    Stage() = "files";
    if (!Stopped()) proc.Step([&] { ScanDrive(); });
    Stage() = "";
    if (!Stopped()) proc.Step([] { LastScan(); });
}

void FrmScan::Image1_Click() {
    Procedure proc(kModule, "Image1_Click");
    proc.Run([&] {
        App().StopRequested = VbTrue;
        App().ScanStopped = VbTrue;
        if (Image1.Picture == kStopNormal || Image1.Picture == kStopHover)
            Image1.Picture = kStopDown;
        Pointer(ui::pointer::kHourglass);
        PlayGif1.Stop();
        App().ScanRunning = VbFalse;
        App().StopRequested = VbTrue;
        lbl3.Caption.clear();
        lbl2.Caption = Lng(39);
        Pointer(ui::pointer::kArrow);
        frmresults().Show();
        if (IsCurrent()) ui::Unload(*this);
        ui::DoEvents();
        Pointer(ui::pointer::kArrow);
    });
}

void FrmScan::Image2_Click() {
    Procedure proc(kModule, "Image2_Click");
    proc.Run([&] {
        Image2.Picture = kResultsDown;
        App().StopRequested = VbTrue;
        App().ScanRunning = VbFalse;
        ui::DoEvents();
        if (IsCurrent()) ui::Unload(*this);
        ui::DoEvents();
        frmresults().Show();
    });
}

void FrmScan::mnuExit_Click() {
    Procedure proc(kModule, "mnuExit_Click");
    proc.Run([&] {
        if (IsCurrent()) ui::Unload(*this);
        ReleaseSingleInstanceMutex();
        std::exit(0);
    });
}

// Walks every drive the file helper calls walkable (types 1 and 3), one after another.
void FrmScan::ScanDrive() {
    Procedure proc(kModule, "ScanDrive");
    proc.Run([&] {
        platform::FileHelper helper;
        colFiles walker;
        const std::vector<std::string> entries = Drive1.Items;
        for (const std::string& entry : entries) {
            if (Stopped()) return;
            if (entry.empty()) continue;
            proc.Step([&] {
                const std::string drive = entry.substr(0, entry.find(':'));
                const int type = helper.DriveType(drive + ":\\");
                if ((type == platform::drivetype::kNoRoot || type == platform::drivetype::kFixed) &&
                    !Stopped())
                    walker.LoadFiles(entry, "");
            });
        }
    });
}

std::string_view CurrentScanStage() {
    return Stage();
}

FrmScan& frmscan() {
    return ui::TheForm<FrmScan>();
}

void LastScan() {
    Procedure proc(kModule, "LastScan");
    proc.Run([&] {
        platform::RegistryHelper registry;
        registry.RootKey(platform::Hive::LocalMachine);
        registry.KeyPath(config::kProductKey);
        registry.SetValue("LastScan", GeneralDate(Now()), platform::regtype::kSz);
    });
}

void Wait(std::int32_t seconds) {
    Procedure proc(kModule, "Wait");
    proc.Run([&] {
        // Signed 32-bit arithmetic, as the tick count is read: overflow is failure 6.
        const std::int64_t span = static_cast<std::int64_t>(seconds) * 1000;
        const std::int64_t limit = static_cast<std::int32_t>(platform::Sys().tickCount()) + span;
        if (!FitsLong(span) || !FitsLong(limit)) Raise(failure::kOverflow);
        while (static_cast<std::int32_t>(platform::Sys().tickCount()) <= limit)
            ui::DoEvents();
    });
}

}  // namespace orvex
