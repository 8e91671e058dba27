// MainWindow.cpp: frmmain.
#include "pages/MainWindow.h"

#include "core/AppState.h"
#include "core/Config.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionLoader.h"
#include "pages/ScanPage.h"
#include "platform/FileSystem.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "scan/ScanLogWrite.h"
#include "stores/AllowedItems.h"
#include "stores/BackupStore.h"
#include "ui/Language.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

ui::Form* LoadedForm(const std::string& name) {
    for (ui::Form* form : ui::LoadedForms())
        if (form->Name == name) return form;
    return nullptr;
}

// Fixed texts, in no language file: the first shows when none is installed.
constexpr const char* kNoLanguageFiles = "Non \xE8 presente alcun file di linguaggio!";
constexpr const char* kRestartForLanguage =
    "If you change your language selection you must restart the application.";

bool IsLanguageFile(const platform::DirEntry& entry) {
    const std::string& name = entry.name;
    return !entry.isFolder() && name.size() > 4 && LCase(name.substr(name.size() - 4)) == ".lng";
}

// Every page a schedule interrupts, in the order they are closed; unsaved work in them goes.
void CloseOpenPages() {
    for (const char* name : {"frmSchedule", "frmblocked", "frmdetailed", "frmexclude", "frmIE",
                             "frmlog", "frmresults", "frmsuccess", "frmupdate"}) {
        ui::Form* form = LoadedForm(name);
        if (form == nullptr) continue;
        if (form->Name == "frmSchedule") form->Hide();
        if (form->Name == "frmresults") App().Navigating = VbTrue;  // its unload must not end us
        ui::Unload(*form);
    }
}

}  // namespace

FrmMain::FrmMain() : Form("frmmain") {
    Caption = "Orvex Sentry";
    List1.Visible = false;
    lvFiles.Visible = false;
    txtScheduleCmd.Visible = false;
    txtScheduleCmd.Change = [this] { txtScheduleCmd_Change(); };
    Image2.SetPictures(1, 3, 2);
    Image3.SetPictures(4, 6, 5);
    Image4.SetPictures(11, 13, 12);
    LanguageEntry(0).Visible = false;
}

ui::MenuItem& FrmMain::LanguageEntry(std::size_t index) {
    while (mnuLanguage.size() <= index) {
        const int next = static_cast<int>(mnuLanguage.size());
        auto& item =
            *mnuLanguage.emplace_back(std::make_unique<ui::MenuItem>(*this, "mnuLanguage", next));
        item.ParentMenu = mnuLanguages.Name;
        item.Click = [this, next] { mnuLanguage_Click(next); };
    }
    return *mnuLanguage[index];
}

void FrmMain::MLSFillMenuLanguages() {
    Procedure proc("frmmain", "MLSFillMenuLanguages");
    proc.Run([&] {
        std::vector<std::string> names;
        for (const platform::DirEntry& entry : platform::Files().list(LanguageFolder()))
            if (IsLanguageFile(entry)) names.push_back(entry.name);
        if (names.empty()) {
            ui::Host().MsgBox(kNoLanguageFiles, ui::msgbox::kOkOnly, config::kProductTitle);
            return;
        }
        for (std::size_t i = 0; i < names.size(); ++i) {
            ui::MenuItem& item = LanguageEntry(i);
            item.Caption = names[i].substr(0, names[i].size() - 4);
            item.Visible = true;
        }
        const std::string current =
            ReadLanguageValue(LanguageSettingsFile(), "Language", "CurrentLanguage");
        for (const auto& item : mnuLanguage)
            if (item->Caption == current) item->Checked = true;
    });
}

void FrmMain::mnuLanguage_Click(int Index) {
    if (Index < 0 || static_cast<std::size_t>(Index) >= mnuLanguage.size()) return;
    Procedure proc("frmmain", "mnuLanguage_Click");
    proc.Run([&] {
        const int answer =
            ui::Host().MsgBox(kRestartForLanguage, ui::msgbox::kYesNo, config::kProductTitle);
        if (answer != ui::msgbox::kYes) return;
        for (const auto& item : mnuLanguage)
            item->Checked = false;
        ui::MenuItem& chosen = *mnuLanguage[static_cast<std::size_t>(Index)];
        chosen.Checked = true;
        CurrentLanguage() = chosen.Caption;
        for (ui::Form* form : ui::LoadedForms())
            LoadFormLanguage(*form);
        WriteLanguageValue("Language", "CurrentLanguage", CurrentLanguage(),
                           LanguageSettingsFile());
    });
}

void FrmMain::txtScheduleCmd_Change() {
    Procedure proc("frmmain", "txtScheduleCmd_Change");
    proc.Run([&] {
        // A schedule that falls due during a scan is lost.
        if (IsTrue(App().ScanRunning) || txtScheduleCmd.Text().empty()) return;
        App().StopRequested = VbFalse;
        if (txtScheduleCmd.Text() == "/scan") {
            std::int32_t noRow = 0;
            ScanLogWrite("", "", "Scheduled", "", "", VbTrue, noRow);
            CloseOpenPages();
            Hide();
            App().ScanOnStart = VbTrue;
            frmscan().ScanItems();
        }
        txtScheduleCmd.SetText("");  // lands here again and stops at the empty text
    });
}

void FrmMain::actions() {
    Procedure proc("frmmain", "actions");
    proc.Run([&] {
        ui::Host().SetMousePointer(ui::pointer::kHourglass);
        Image3.Enabled = false;
        Image3.Picture = 7;
        Image2.Enabled = false;
        Image2.Picture = 14;
        proc.Step([] {
            platform::RegistryHelper reg;
            reg.RootKey(platform::Hive::LocalMachine);
            reg.KeyPath(config::kProductKey);
            if (!reg.KeyExists()) reg.CreateKey("");
        });
        ui::DoEvents();
        LoadExclusion();
        ui::DoEvents();
        LoadReferenceFiles();
        LoadBackupDat();
        ui::Host().SetMousePointer(ui::pointer::kArrow);
        ui::DoEvents();
    });
}

FrmMain& frmmain() {
    return ui::TheForm<FrmMain>();
}

}  // namespace orvex
