// SuccessPage.cpp: frmsuccess.
#include "pages/SuccessPage.h"

namespace orvex {

FrmSuccess::FrmSuccess() : Form("frmsuccess") {}

FrmSuccess& frmsuccess() {
    return ui::TheForm<FrmSuccess>();
}

}  // namespace orvex
