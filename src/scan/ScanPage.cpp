// ScanPage.cpp: frmscan.
#include "scan/ScanPage.h"

namespace orvex {

FrmScan::FrmScan() : Form("frmscan") {}

void FrmScan::ScanItems() {
    Show();
}

FrmScan& frmscan() {
    return ui::TheForm<FrmScan>();
}

}  // namespace orvex
