// RemovalPage.cpp: frmremoval.
#include "pages/RemovalPage.h"

namespace orvex {

FrmRemoval::FrmRemoval() : Form("frmremoval") {}

FrmRemoval& frmremoval() {
    return ui::TheForm<FrmRemoval>();
}

}  // namespace orvex
