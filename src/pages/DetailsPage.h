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

    void Form_Load() override;
    // One lvEasy row per threat of lvDetails, in order of first finding.
    void LoadEasy();
    // Keeps only the rows of the level Combo1 shows (all of them for "all levels").
    void Filter();
    void Combo1_Click();
    void lvEasy_ColumnClick(int column);
    void Image1_MouseDown(int button);  // remove everything
    void Image2_MouseDown(int button);  // remove the selected threats
    void Image3_MouseDown(int button);  // explain the selected threat's categories
    void Image4_MouseDown(int button);  // allow the selected threats
    void Image5_MouseDown(int button);  // back to the results

    ScumListView lvDetails{*this, "lvDetails", ScumListOfRun()};  // hidden
    ui::ListView lvEasy{*this, "lvEasy"};                         // name, categories, threat level
    ThreatNameListView List1{*this, "List1", List1OfRun()};       // hidden
    ui::ComboBox Combo1{*this, "Combo1"};                         // the level filter
    ui::Label Label1{*this, "Label1"};                            // the count of threats
    ui::ImageButton Image1{*this, "Image1"};
    ui::ImageButton Image2{*this, "Image2"};
    ui::ImageButton Image3{*this, "Image3"};
    ui::ImageButton Image4{*this, "Image4"};
    ui::ImageButton Image5{*this, "Image5"};

  private:
    void ShowCount();
    void ShowDetailed();
    void SelectFirst();
};

FrmDetails& frmdetails();

}  // namespace orvex
