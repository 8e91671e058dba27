// RemovalPage.cpp: frmremoval. Both ways out, the cancel button and the unload at the end
// of the bar, raise the cancel flag and lead to the completion page unless the item list
// started the removal.
#include "pages/RemovalPage.h"

#include "core/AppState.h"
#include "pages/DetailsPage.h"
#include "pages/SuccessPage.h"
#include "platform/FileHelper.h"
#include "scan/Recorder.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr int kPictureDown = 2;
constexpr const char* kMemoryResident = "Memory Resident";

bool DetailsVisible() {
    return ui::IsLoaded<FrmDetails>() && frmdetails().Visible;
}

}  // namespace

FrmRemoval::FrmRemoval() : Form("frmremoval") {
    Image5.Click = [this] { Command1_Click(); };
}

void FrmRemoval::Form_Load() {
    Label1.Caption = Lng(26);
    Label2.Caption = Lng(25);
    Left = App().WindowLeft;
    Top = App().WindowCentreY - Height / 2;
    PlayGif1.Visible = platform::FileHelper().FileExists(App().AppPath + "\\scan.gif");
    if (PlayGif1.Visible) PlayGif1.Play();
    Intiate();
}

void FrmRemoval::Intiate() {
    std::int32_t count = 0;
    for (const ScumRow& row : ScumListOfRun())
        if (row.checked && row.category != kMemoryResident) ++count;
    pb1.Min = 0;
    pb1.Max = count;
    Show();
    App().RemovalTotal = count;
}

void FrmRemoval::Command1_Click() {
    App().RemovalCancelled = VbTrue;
    Image5.Picture = kPictureDown;
    const bool fromDetails = DetailsVisible();
    Hide();
    if (!fromDetails) ui::DoEvents();
    ui::Unload(*this);
    if (fromDetails)
        ui::DoEvents();
    else
        frmsuccess().Show();
}

void FrmRemoval::Form_Unload(int& cancel) {
    (void)cancel;
    App().WindowLeft = Left;
    App().WindowCentreY = Top + Height / 2;
    App().RemovalCancelled = VbTrue;
    if (DetailsVisible()) return;
    ui::DoEvents();
    frmsuccess().Show();
}

FrmRemoval& frmremoval() {
    return ui::TheForm<FrmRemoval>();
}

}  // namespace orvex
