// ExcludePage.cpp: frmexclude.
#include "pages/ExcludePage.h"

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "pages/HelpFile.h"
#include "stores/AllowedItems.h"

namespace orvex {
namespace {

constexpr int kLeftButton = 1;
constexpr int kExplanation = 1240;  // what the allowed list does and how to undo it
constexpr int kPictureDown = 2;

const std::string& SubItem(const ui::ListItem& row, std::size_t column) {
    static const std::string kEmpty;
    return column >= 1 && column <= row.SubItems.size() ? row.SubItems[column - 1] : kEmpty;
}

ExclusionRecord RecordOfRow(const ui::ListItem& row) {
    return ExclusionRecord{row.Text, SubItem(row, 1), SubItem(row, 2), SubItem(row, 3)};
}

bool SameThreat(const std::string& a, const std::string& b) {
    return LCase(a) == LCase(b);
}

bool HasRowNamed(const ui::ListView& list, const std::string& text) {
    for (const ui::ListItem& row : list.ListItems) {
        if (SameThreat(row.Text, text)) return true;
    }
    return false;
}

void RemoveRowsNamed(ui::ListView& list, const std::string& text) {
    auto& rows = list.ListItems;
    for (auto i = rows.size(); i-- > 0;) {
        if (SameThreat(rows[i].Text, text)) rows.erase(rows.begin() + static_cast<long>(i));
    }
}

}  // namespace

FrmExclude::FrmExclude() : Form("frmexclude") {
    lvExclusion.Visible = false;
    Image1.Click = [this] { Image1_MouseDown(kLeftButton); };
    Image2.Click = [this] { Image2_MouseDown(kLeftButton); };
    Image15.Click = [this] { Image15_MouseDown(kLeftButton); };
    lvE1.ColumnClick = [this](int column) { ui::SortOnColumnClick(lvE1, column); };
    lvExclusion.ColumnClick = [this](int column) { ui::SortOnColumnClick(lvExclusion, column); };
}

void FrmExclude::Form_Load() {
    LoadExclusion();
    DisplayExclusions();
    LoadData();
    rt1.Caption = Lng(kExplanation);
}

void FrmExclude::LoadData() {
    for (const ui::ListItem& record : lvExclusion.ListItems) {
        if (HasRowNamed(lvE1, record.Text)) continue;
        ui::ListItem row;
        row.Text = record.Text;
        lvE1.ListItems.push_back(std::move(row));
    }
}

void FrmExclude::cmdRemove_Click() {
    Image2.Picture = kPictureDown;
    auto& threats = lvE1.ListItems;
    // From the last row up, so that removing a row leaves the rows still to visit in place.
    for (auto i = threats.size(); i-- > 0;) {
        if (!threats[i].Selected) continue;
        RemoveRowsNamed(lvExclusion, threats[i].Text);
        threats.erase(threats.begin() + static_cast<long>(i));
    }
    ReWriteExclusion1();
    if (!threats.empty()) threats.front().Selected = true;
}

void FrmExclude::Image1_MouseDown(int button) {
    if (button != kLeftButton) return;
    Image1.Picture = kPictureDown;
    ui::Unload(*this);
}

void FrmExclude::Image2_MouseDown(int button) {
    if (button != kLeftButton) return;
    cmdRemove_Click();
}

void FrmExclude::Image15_MouseDown(int button) {
    if (button == kLeftButton) OpenHelpFile();
}

FrmExclude& frmexclude() {
    return ui::TheForm<FrmExclude>();
}

void DisplayExclusions() {
    Procedure proc("Module1", "DisplayExclusions");
    proc.Run([&] {
        ui::ListView& list = frmexclude().lvExclusion;
        for (const ExclusionRecord& r : ExclusionRecords()) {
            if (!IsKnownKind(r.ItemKind)) continue;
            ui::ListItem row;
            row.Text = r.ThreatName;
            row.SubItems = {r.ItemKind, r.ItemLocation, r.ItemName};
            list.ListItems.push_back(std::move(row));
        }
    });
}

void ReWriteExclusion1() {
    std::vector<ExclusionRecord> records;
    for (const ui::ListItem& row : frmexclude().lvExclusion.ListItems)
        records.push_back(RecordOfRow(row));
    RewriteExclusions("ReWriteExclusion1", records);
}

}  // namespace orvex
