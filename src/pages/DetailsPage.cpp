// DetailsPage.cpp: frmdetails, the views it shows the recorder's lists through, the level
// filter, and the buttons that remove or allow the threats the user picks.
#include "pages/DetailsPage.h"

#include <algorithm>
#include <utility>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "logs/UsageReport.h"
#include "pages/DetailedPage.h"
#include "pages/RemovalPage.h"
#include "pages/ResultsPage.h"
#include "removal/RemovalDriver.h"
#include "stores/AllowedItems.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kModule = "frmdetails";
constexpr int kAllLevels = 65;
constexpr int kFirstLevelText = 87;  // 87 to 91, by icon 1 to 5 or 6 to 10
constexpr int kThreatsWord = 66;
constexpr int kLeftButton = 1;

std::string LevelText(int icon) {
    if (icon < 1 || icon > 10) return "";
    return Lng(kFirstLevelText + (icon - 1) % 5);
}

void RemoveName(ThreatNameList& names, const std::string& name) {
    for (std::int32_t i = 0; i < names.ListCount(); ++i)
        if (names.List(i) == name) return names.RemoveItem(i);
}

}  // namespace

ScumListView::ScumListView(ui::Form& owner, std::string name, ScumList& rows)
    : Control(owner, std::move(name)), rows_(&rows) {}

ThreatNameListView::ThreatNameListView(ui::Form& owner, std::string name, ThreatNameList& names)
    : Control(owner, std::move(name)), names_(&names) {}

FrmDetails::FrmDetails() : Form("frmdetails") {
    lvDetails.Visible = false;
    List1.Visible = false;
    lvEasy.Checkboxes = true;
    Combo1.Click = [this] { Combo1_Click(); };
    lvEasy.ColumnClick = [this](int column) { lvEasy_ColumnClick(column); };
    lvEasy.DblClick = [this] { ShowDetailed(); };
}

void FrmDetails::Form_Load() {
    Combo1.Items = {Lng(kAllLevels)};
    for (int level = kFirstLevelText; level < kFirstLevelText + 5; ++level)
        Combo1.Items.push_back(Lng(level));
    Combo1.ListIndex = 0;
    Combo1.Text = Combo1.Items[0];
}

void FrmDetails::LoadEasy() {
    Procedure proc(kModule, "LoadEasy");
    proc.Run([&] {
        lvEasy.ListItems.clear();
        for (const ScumRow& finding : lvDetails.Rows()) {
            bool listed = false;
            for (const ui::ListItem& row : lvEasy.ListItems)
                listed = listed || row.Text == finding.name;
            if (listed) continue;  // the level of the first finding stands
            ui::ListItem threat;
            threat.Text = finding.name;
            threat.SubItems = {GetItemDetail(finding.name), LevelText(finding.icon)};
            lvEasy.ListItems.push_back(std::move(threat));
        }
        ShowCount();
        SelectFirst();
    });
}

void FrmDetails::Filter() {
    Procedure proc(kModule, "Filter");
    proc.Run([&] {
        if (Combo1.Text == Lng(kAllLevels)) return;
        std::erase_if(lvEasy.ListItems, [&](const ui::ListItem& row) {
            return row.SubItems.size() < 2 || row.SubItems[1] != Combo1.Text;
        });
        SelectFirst();
    });
}

void FrmDetails::Combo1_Click() {
    if (Combo1.Text.empty()) return;
    LoadEasy();
    Filter();
}

void FrmDetails::lvEasy_ColumnClick(int column) {
    ui::SortOnColumnClick(lvEasy, column);
}

void FrmDetails::Image1_MouseDown(int button) {
    if (button != kLeftButton) return;
    Procedure proc(kModule, "Image1_MouseDown");
    proc.Run([&] {
        App().RemovalCancelled = VbFalse;
        ui::Host().SetMousePointer(ui::pointer::kHourglass);
        ScumList& rows = lvDetails.Rows();
        for (std::int32_t i = 1; i <= rows.count(); ++i)
            rows.setChecked(i, true);
        App().ThreatCount = List1.Names().ListCount();
        for (const std::string& name : List1.Names().Items())
            PhoneHome(name, 1);
        if (rows.empty()) return;
        App().BackupEnabled = VbTrue;
        Hide();
        App().Navigating = VbTrue;  // frmresults goes, and with it must not go the program
        ui::Unload(frmresults());
        frmremoval().Show();
        BlockAll("");
    });
}

// The removal comes back here: frmdetails stays visible, so the user sees what is left.
void FrmDetails::Image2_MouseDown(int button) {
    if (button != kLeftButton) return;
    Procedure proc(kModule, "Image2_MouseDown");
    proc.Run([&] {
        App().RemovalCancelled = VbFalse;
        App().BackupEnabled = VbTrue;
        App().ThreatCount = 0;
        ScumList& rows = lvDetails.Rows();
        for (auto row = lvEasy.ListItems.size(); row-- > 0;) {
            if (!lvEasy.ListItems[row].Selected) continue;
            const std::string name = lvEasy.ListItems[row].Text;
            ++App().ThreatCount;
            for (std::int32_t i = 1; i <= rows.count(); ++i)
                if (rows.row(i).name == name) rows.setChecked(i, true);
            const auto& listed = List1.Names().Items();
            if (std::find(listed.begin(), listed.end(), name) != listed.end()) {
                PhoneHome(name, 1);
                RemoveName(List1.Names(), name);
            }
            lvEasy.ListItems.erase(lvEasy.ListItems.begin() + static_cast<std::ptrdiff_t>(row));
        }
        frmremoval().Show();
        BlockAll("");
        ShowCount();
    });
}

void FrmDetails::Image3_MouseDown(int button) {
    if (button == kLeftButton) ShowDetailed();
}

void FrmDetails::ShowDetailed() {
    for (ui::ListItem& row : lvEasy.ListItems) {
        if (!row.Selected || row.SubItems.empty()) continue;
        FrmDetailed& detailed = frmdetailed();
        detailed.Label1.Caption = row.Text;
        detailed.Display(row.SubItems[0]);
        detailed.Show();
        return;
    }
}

void FrmDetails::Image4_MouseDown(int button) {
    if (button != kLeftButton) return;
    Procedure proc(kModule, "Image4_MouseDown");
    proc.Run([&] {
        ScumList& rows = lvDetails.Rows();
        for (auto row = lvEasy.ListItems.size(); row-- > 0;) {
            if (!lvEasy.ListItems[row].Selected) continue;
            const std::string name = lvEasy.ListItems[row].Text;
            for (std::int32_t i = rows.count(); i >= 1; --i) {
                const ScumRow& finding = rows.row(i);
                if (LCase(finding.name) != LCase(name)) continue;
                ExclusionRecords().Add(
                    {finding.name, finding.category, finding.location, finding.item});
                rows.removeRow(i);
            }
            lvEasy.ListItems.erase(lvEasy.ListItems.begin() + static_cast<std::ptrdiff_t>(row));
            RemoveName(List1.Names(), name);
            PhoneHome(name, 2);
        }
        WriteExclusions();
        ShowCount();
    });
}

void FrmDetails::Image5_MouseDown(int button) {
    if (button != kLeftButton) return;
    Hide();
    if (!frmresults().Visible) frmresults().Show();
}

void FrmDetails::ShowCount() {
    Label1.Caption = std::to_string(lvEasy.ListItems.size()) + " " + Lng(kThreatsWord);
}

void FrmDetails::SelectFirst() {
    for (std::size_t i = 0; i < lvEasy.ListItems.size(); ++i)
        lvEasy.ListItems[i].Selected = i == 0;
}

FrmDetails& frmdetails() {
    return ui::TheForm<FrmDetails>();
}

}  // namespace orvex
