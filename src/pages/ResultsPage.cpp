// ResultsPage.cpp: frmresults.
#include "pages/ResultsPage.h"

#include <string>
#include <vector>

#include "core/AppState.h"
#include "logs/UsageReport.h"
#include "pages/DetailsPage.h"
#include "pages/RemovalPage.h"
#include "pages/ScanPage.h"
#include "pages/SuccessPage.h"
#include "removal/RemovalDriver.h"
#include "scan/Recorder.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr int kPicturePressed = 15;
constexpr int kCancelPressed = 16;
constexpr int kDetailsPressed = 17;
constexpr int kNoNumber = -1;  // the pieces of a summary without a count

// The summary's pieces: message numbers, with the count after the first where it stands.
std::vector<int> SummaryPieces(bool threats, bool stopped) {
    if (stopped)
        return threats ? std::vector{48, kNoNumber, 49, 52, 53} : std::vector{48, 49, 50, 52, 53};
    return threats ? std::vector{61, kNoNumber, 62, 55, 52, 53} : std::vector{61, 62, 55, 52, 53};
}

// Every page leaves for the next one with Navigating raised, so its unload does not end
// the program.
template <class F>
void Navigate(F&& step) {
    App().Navigating = VbTrue;
    step();
    App().Navigating = VbFalse;
}

}  // namespace

FrmResults::FrmResults() : Form("frmresults") {
    Image3.Click = [this] { cmdBlock_Click(); };
    Image2.Click = [this] { lbl1_Click(); };
    Image4.Click = [this] { cmdCancel_Click(); };
    Image5.Click = [this] { RunScanAgain(); };
    Label1.Click = [this] { RunScanAgain(); };
}

void FrmResults::Form_Unload(int&) {
    if (IsTrue(App().Navigating)) return;
    ReleaseSingleInstanceMutex();
    ui::End();
}

void FrmResults::cmdCancel_Click() {
    App().Navigating = VbFalse;
    Image4.Picture = kCancelPressed;
    Hide();
    ui::Unload(*this);
}

void FrmResults::lbl1_Click() {
    Image2.Picture = kDetailsPressed;
    ui::DoEvents();
    Hide();
    FrmDetails& details = frmdetails();
    if (!details.Combo1.Items.empty()) details.Combo1.Text = details.Combo1.Items.front();
    details.Filter();
    details.LoadEasy();
    details.Filter();
    details.Show();
}

// Navigating stays raised through the new scan, which brings this page back at its end.
void FrmResults::RunScanAgain() {
    App().Navigating = VbTrue;
    App().ScanRunning = VbTrue;
    App().StopRequested = VbFalse;
    ScumListOfRun().clear();
    App().ItemsScanned = 0;
    Hide();
    ui::DoEvents();
    ui::Unload(*this);
    frmscan().ScanItems();
}

// The heading and the option lines follow how the scan ended.
void FrmResults::Form_Load() {
    const bool stopped = IsTrue(App().ScanStopped);
    lbl2.Caption = stopped ? std::string(kScanStoppedHeading) : Lng(21);
    Label1.Visible = stopped;
    Image5.Visible = stopped;
    Label2.Visible = stopped && IsTrue(App().ScanOnStart);
    Image6.Visible = Label2.Visible;
    Caption1();
}

void FrmResults::Caption1() {
    const bool threats = !frmdetails().List1.Names().Items().empty();
    std::string text;
    for (int piece : SummaryPieces(threats, IsTrue(App().ScanStopped))) {
        if (!text.empty()) text += ' ';
        text += piece == kNoNumber ? std::to_string(App().ScumCount) : Lng(piece);
    }
    lbl3.Caption = text;
}

void FrmResults::cmdBlock_Click() {
    App().RemovalCancelled = VbFalse;
    Image3.Picture = kPicturePressed;
    ScumList& rows = ScumListOfRun();
    if (rows.empty()) {
        Hide();
        Navigate([this] {
            ui::Unload(*this);
            ui::DoEvents();
            frmsuccess().Show();
        });
        return;
    }
    App().BackupEnabled = VbTrue;
    App().ThreatCount = frmdetails().List1.Names().ListCount();
    for (std::int32_t i = 1; i <= rows.count(); ++i) {
        rows.setChecked(i, true);
        ui::DoEvents();
    }
    for (const ui::ListItem& row : frmdetails().lvEasy.ListItems) {
        PhoneHome(row.Text, 1);
        ui::DoEvents();
    }
    Navigate([this] {
        ui::Unload(*this);
        frmremoval().Show();
        BlockAll("");
    });
}

FrmResults& frmresults() {
    return ui::TheForm<FrmResults>();
}

}  // namespace orvex
