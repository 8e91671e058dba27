// ScanPage.h: frmscan, the page that runs a scan and shows its progress.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmScan : public ui::Form {
  public:
    FrmScan();

    // Runs the whole scan; the scans themselves join it one by one.
    void ScanItems();

    ui::ImageButton Image1{*this, "Image1"};  // stop
    ui::Label lbl3{*this, "lbl3"};
    ui::Label lbl4{*this, "lbl4"};
};

FrmScan& frmscan();

}  // namespace orvex
