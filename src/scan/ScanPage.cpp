// ScanPage.cpp: frmscan and the scan driver.
#include "scan/ScanPage.h"

namespace orvex {

FrmScan::FrmScan() : Form("frmscan") {}

void FrmScan::Form_Load() {}

void FrmScan::Form_Unload(int&) {}

void FrmScan::ScanItems() {
    Show();
}

void FrmScan::Image1_Click() {}

void FrmScan::Image2_Click() {}

void FrmScan::mnuExit_Click() {}

void FrmScan::ScanDrive() {}

FrmScan& frmscan() {
    return ui::TheForm<FrmScan>();
}

void LastScan() {}

void Wait(std::int32_t) {}

}  // namespace orvex
