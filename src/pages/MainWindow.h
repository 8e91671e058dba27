// MainWindow.h: frmmain, the first page of the wizard and the owner of the data loads.
#pragma once

#include <memory>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmMain : public ui::Form {
  public:
    FrmMain();

    // Loads the allowed list, the definitions and the backup list, in that order.
    void actions();
    // The mailbox of a running copy: "/scan" written into txtScheduleCmd from outside closes
    // the open pages and starts a scan, unless one is running.
    void txtScheduleCmd_Change();
    // Lists the installed languages in the language menu and ticks the one in use.
    void MLSFillMenuLanguages();
    // After the user agrees to restart, applies the chosen language to every loaded form and
    // keeps it in LangSetting.ini; the messages change only with the restart.
    void mnuLanguage_Click(int Index);

    ui::ImageButton Image2{*this, "Image2"};  // scan
    ui::ImageButton Image3{*this, "Image3"};  // update
    ui::ImageButton Image4{*this, "Image4"};  // exit
    ui::Label lbl1{*this, "lbl1"};
    ui::Label lbl2{*this, "lbl2"};
    ui::Label lbldef{*this, "lbldef"};
    ui::ListBox List1{*this, "List1"};
    ui::ListView lvFiles{*this, "lvFiles"};
    ui::TextBox txtScheduleCmd{*this, "txtScheduleCmd"};
    ui::MenuItem mnuRun{*this, "mnuRun"};  // File, run scan
    ui::MenuItem mnuLanguages{*this, "mnuLanguages"};
    // One entry per language file; entry 0 is always there, the rest are loaded as needed.
    std::vector<std::unique_ptr<ui::MenuItem>> mnuLanguage;

  private:
    ui::MenuItem& LanguageEntry(std::size_t index);  // loaded into the array when missing
};

FrmMain& frmmain();

}  // namespace orvex
