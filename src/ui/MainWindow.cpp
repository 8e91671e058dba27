// MainWindow.cpp: frmmain.
#include "ui/MainWindow.h"

namespace orvex {

FrmMain::FrmMain() : Form("frmmain") {
    Caption = "Orvex Sentry";
    List1.Visible = false;
    lvFiles.Visible = false;
    txtScheduleCmd.Visible = false;
}

void FrmMain::actions() {}

FrmMain& frmmain() {
    return ui::TheForm<FrmMain>();
}

}  // namespace orvex
