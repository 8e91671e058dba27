// ResultsPage.cpp: frmresults.
#include "pages/ResultsPage.h"

#include "core/AppState.h"

namespace orvex {

FrmResults::FrmResults() : Form("frmresults") {}

// The heading and the option lines follow how the scan ended.
void FrmResults::Form_Load() {
    const bool stopped = IsTrue(App().ScanStopped);
    lbl2.Caption = stopped ? std::string(kScanStoppedHeading) : Lng(21);
    Label1.Visible = stopped;
    Image5.Visible = stopped;
    Label2.Visible = stopped && IsTrue(App().ScanOnStart);
    Image6.Visible = Label2.Visible;
}

FrmResults& frmresults() {
    return ui::TheForm<FrmResults>();
}

}  // namespace orvex
