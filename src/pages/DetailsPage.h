// DetailsPage.h: frmdetails, the item list page. Its lvDetails and List1 show the
// recorder's ScumList and name list; lvEasy holds one row per threat for the user.
#pragma once

#include <string>
#include <vector>

#include "scan/Recorder.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

// A list view over the ScumList: it keeps no rows of its own, so the findings outlive
// the form and a scan never copies them. Row numbers are the ScumList's (1..count()).
class ScumListView : public ui::Control {
  public:
    ScumListView(ui::Form& owner, std::string name, ScumList& rows);
    ScumList& Rows() const { return *rows_; }

    std::vector<std::string> ColumnHeaders;
    bool Checkboxes = true;

  private:
    ScumList* rows_;
};

// A list box over the recorder's List1.
class ThreatNameListView : public ui::Control {
  public:
    ThreatNameListView(ui::Form& owner, std::string name, ThreatNameList& names);
    ThreatNameList& Names() const { return *names_; }

  private:
    ThreatNameList* names_;
};

class FrmDetails : public ui::Form {
  public:
    FrmDetails();

    ScumListView lvDetails{*this, "lvDetails", ScumListOfRun()};  // hidden
    ui::ListView lvEasy{*this, "lvEasy"};                         // name, categories, threat level
    ThreatNameListView List1{*this, "List1", List1OfRun()};       // hidden
};

FrmDetails& frmdetails();

}  // namespace orvex
