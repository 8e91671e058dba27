// MainWindow.cpp: frmmain.
#include "pages/MainWindow.h"

#include "core/Config.h"
#include "core/ErrorHandler.h"
#include "definitions/DefinitionLoader.h"
#include "platform/RegistryHelper.h"
#include "stores/AllowedItems.h"
#include "stores/BackupStore.h"
#include "ui/UiHost.h"

namespace orvex {

FrmMain::FrmMain() : Form("frmmain") {
    Caption = "Orvex Sentry";
    List1.Visible = false;
    lvFiles.Visible = false;
    txtScheduleCmd.Visible = false;
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
