// MainWindow.cpp: frmmain.
#include "pages/MainWindow.h"

#include "core/AppState.h"
#include "core/Config.h"
#include "core/ErrorHandler.h"
#include "definitions/DefinitionLoader.h"
#include "pages/ScanPage.h"
#include "platform/RegistryHelper.h"
#include "scan/ScanLogWrite.h"
#include "stores/AllowedItems.h"
#include "stores/BackupStore.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

ui::Form* LoadedForm(const std::string& name) {
    for (ui::Form* form : ui::LoadedForms())
        if (form->Name == name) return form;
    return nullptr;
}

// Every page a schedule interrupts, in the order they are closed; unsaved work in them goes.
void CloseOpenPages() {
    for (const char* name : {"frmSchedule", "frmblocked", "frmdetailed", "frmexclude", "frmIE",
                             "frmlog", "frmresults", "frmsuccess", "frmupdate"}) {
        ui::Form* form = LoadedForm(name);
        if (form == nullptr) continue;
        if (form->Name == "frmSchedule") form->Hide();
        if (form->Name == "frmresults") App().Navigating = VbTrue;  // its unload must not end us
        ui::Unload(*form);
    }
}

}  // namespace

FrmMain::FrmMain() : Form("frmmain") {
    Caption = "Orvex Sentry";
    List1.Visible = false;
    lvFiles.Visible = false;
    txtScheduleCmd.Visible = false;
    txtScheduleCmd.Change = [this] { txtScheduleCmd_Change(); };
}

void FrmMain::txtScheduleCmd_Change() {
    Procedure proc("frmmain", "txtScheduleCmd_Change");
    proc.Run([&] {
        // A schedule that falls due during a scan is lost.
        if (IsTrue(App().ScanRunning) || txtScheduleCmd.Text().empty()) return;
        App().StopRequested = VbFalse;
        if (txtScheduleCmd.Text() == "/scan") {
            std::int32_t noRow = 0;
            ScanLogWrite("", "", "Scheduled", "", "", VbTrue, noRow);
            CloseOpenPages();
            Hide();
            App().ScanOnStart = VbTrue;
            frmscan().ScanItems();
        }
        txtScheduleCmd.SetText("");  // lands here again and stops at the empty text
    });
}

void FrmMain::actions() {
    Procedure proc("frmmain", "actions");
    proc.Run([&] {
        ui::Host().SetMousePointer(ui::pointer::kHourglass);
        Image3.Enabled = false;
        Image3.Picture = 7;
        Image2.Enabled = false;
        Image2.Picture = 14;
        proc.Step([] {
            platform::RegistryHelper reg;
            reg.RootKey(platform::Hive::LocalMachine);
            reg.KeyPath(config::kProductKey);
            if (!reg.KeyExists()) reg.CreateKey("");
        });
        ui::DoEvents();
        LoadExclusion();
        ui::DoEvents();
        LoadReferenceFiles();
        LoadBackupDat();
        ui::Host().SetMousePointer(ui::pointer::kArrow);
        ui::DoEvents();
    });
}

FrmMain& frmmain() {
    return ui::TheForm<FrmMain>();
}

}  // namespace orvex
