// ResultsPage.h: frmresults, the page that follows a scan and tells what it found.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmResults : public ui::Form {
  public:
    FrmResults();

    void Form_Load() override;
    // Rebuilds the summary from the counts; the removal calls it for every row.
    void Caption1();
    // Ends the program unless the page is leaving for another one (Navigating).
    void Form_Unload(int& cancel) override;
    // The remove button (Image3): checks every row and removes them all, with backups.
    void cmdBlock_Click();
    // The cancel button (Image4): leaves the wizard, which ends the program.
    void cmdCancel_Click();
    // "Run Scan Again" (Image5 and Label1): a new scan in place of this page.
    void RunScanAgain();
    // The details link (Image2): the item list with every level shown.
    void lbl1_Click();

    ui::Label lbl2{*this, "lbl2"};            // heading
    ui::Label lbl3{*this, "lbl3"};            // summary
    ui::ImageButton Image2{*this, "Image2"};  // details
    ui::ImageButton Image3{*this, "Image3"};  // remove
    ui::ImageButton Image4{*this, "Image4"};  // cancel
    ui::Label Label1{*this, "Label1"};        // "Run Scan Again"
    ui::ImageButton Image5{*this, "Image5"};
    ui::Label Label2{*this, "Label2"};  // "View Scheduling Options"
    ui::ImageButton Image6{*this, "Image6"};
};

FrmResults& frmresults();

// The heading of a scan that the user stopped.
inline constexpr const char* kScanStoppedHeading = "Scan has been stopped";

}  // namespace orvex
