// ScreenNotice.cpp: frmScreen.
#include "pages/ScreenNotice.h"

namespace orvex {

FrmScreen::FrmScreen() : Form("frmScreen") {}

void FrmScreen::Form_Load() {
    Text1.SetText(
        "   This version of Orvex Sentry software is not currently usable with screen reader "
        "software such as JAWS or Window-Eyes. Screen reader support is planned for a future "
        "release of Orvex Sentry. We apologize for the inconvenience. "
        "   Please press Alt+F4 now to close this version of Orvex Sentry."
        " The latest news on accessibility is published on the Orvex Sentry web site.");
}

FrmScreen& frmScreen() {
    return ui::TheForm<FrmScreen>();
}

}  // namespace orvex
