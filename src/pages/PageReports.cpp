// PageReports.cpp: each report written into the controls of its page. A page that is not
// loaded comes into being at the first report, as its controls are touched.
#include "pages/PageReports.h"

#include "core/AppState.h"
#include "core/Convert.h"
#include "definitions/LoadReport.h"
#include "pages/MainWindow.h"
#include "pages/RemovalPage.h"
#include "pages/ResultsPage.h"
#include "pages/ScanPage.h"
#include "scan/RemovalProgress.h"
#include "scan/ScanProgress.h"

namespace orvex {
namespace {

// Pictures of frmmain's image set.
constexpr int kScanNormalPicture = 1;
constexpr int kUpdateNormalPicture = 4;
constexpr int kUpdateHoverPicture = 6;

class ScanPageProgress : public ScanProgress {
  public:
    void ItemsScanned(const std::string& message, std::int32_t items) override {
        frmscan().lbl3.Caption = message + std::to_string(items);
    }
    void ThreatsFound(std::int32_t threats) override {
        frmscan().lbl4.Caption = Lng(431) + " " + CStr(threats);
    }
};

class MainWindowLoadReport : public LoadReport {
  public:
    void DefinitionFileRead() override {
        FrmMain& form = frmmain();
        form.Image3.Enabled = true;
        form.Image3.Picture = kUpdateNormalPicture;
        form.mnuRun.Enabled = true;
    }
    void DefinitionFileMissing() override {
        FrmMain& form = frmmain();
        form.Image4.Enabled = true;
        form.mnuRun.Enabled = false;
        form.Image3.Enabled = true;
        form.Image3.Picture = kUpdateHoverPicture;
    }
    void FileListCleared() override { frmmain().lvFiles.ListItems.clear(); }
    void DefinitionDate(const std::string& date) override {
        frmmain().lbl1.Caption = date.empty() ? Lng(177) : Lng(176) + " " + date;
    }
    void ScanAllowed() override {
        FrmMain& form = frmmain();
        form.Image3.Enabled = true;
        form.Image4.Enabled = true;
        form.Image3.Picture = kUpdateNormalPicture;
        form.Image2.Enabled = true;
        form.Image2.Picture = kScanNormalPicture;
    }
    void LoadFinished(const std::string& date) override {
        frmmain().lbldef.Caption = "Definition File date: " + date;
    }
};

class RemovalPageProgress : public RemovalProgress {
  public:
    // The results page was unloaded before the removal; this brings it back, unseen.
    void RowStarting(std::int32_t) override { frmresults().Caption1(); }
    void RowDeleted() override {
        FrmRemoval& form = frmremoval();
        form.Label2.Caption = Lng(298);
        if (form.pb1.Max > form.pb1.Value) ++form.pb1.Value;
        if (form.pb1.Value != form.pb1.Max) return;
        form.PlayGif1.Stop();
        form.PlayGif1.Visible = false;
        form.Label2.Caption.clear();
        form.Label1.Caption = Lng(1218);
        form.pb1.Visible = false;
        ui::Unload(form);
    }
    void ManualRemovalNeeded() override {
        FrmRemoval& form = frmremoval();
        if (form.pb1.Max > form.pb1.Value) ++form.pb1.Value;  // the renderer repaints from it
        if (form.pb1.Value == form.pb1.Max) form.PlayGif1.Stop();
    }
};

}  // namespace

void InstallPageReports() {
    static ScanPageProgress scan;
    static MainWindowLoadReport load;
    static RemovalPageProgress removal;
    Reporter<ScanProgress>::Install(&scan);
    Reporter<LoadReport>::Install(&load);
    Reporter<RemovalProgress>::Install(&removal);
}

}  // namespace orvex
