// AboutBox.cpp: frmHelp.
#include "pages/AboutBox.h"

#include <string>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Version.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr int kPictureDown = 2;

}  // namespace

FrmHelp::FrmHelp() : Form("frmHelp") {
    Image1.Click = [this] { Image1_Click(); };
}

// The version as its three numbers, the revision as it stands ("1.0.0").
void FrmHelp::Form_Load() {
    Procedure proc("frmhelp", "Form_Load");
    proc.Run([&] {
        lbl1.Caption = std::to_string(kVersion.major) + "." + std::to_string(kVersion.minor) + "." +
                       std::to_string(kVersion.revision);
        lbl2.Caption = App().DefinitionDate;
        lbl3.Caption = App().StaticDefinitionVer;
    });
}

void FrmHelp::Image1_Click() {
    Image1.Picture = kPictureDown;
    ui::DoEvents();
    ui::Unload(*this);
}

FrmHelp& frmHelp() {
    return ui::TheForm<FrmHelp>();
}

}  // namespace orvex
