// DetailsPage.cpp: frmdetails and the views it shows the recorder's lists through.
#include "pages/DetailsPage.h"

#include <utility>

namespace orvex {

ScumListView::ScumListView(ui::Form& owner, std::string name, ScumList& rows)
    : Control(owner, std::move(name)), rows_(&rows) {}

ThreatNameListView::ThreatNameListView(ui::Form& owner, std::string name, ThreatNameList& names)
    : Control(owner, std::move(name)), names_(&names) {}

FrmDetails::FrmDetails() : Form("frmdetails") {
    lvDetails.Visible = false;
    List1.Visible = false;
    lvEasy.Checkboxes = true;
}

FrmDetails& frmdetails() {
    return ui::TheForm<FrmDetails>();
}

}  // namespace orvex
