// BlockedPage.h: frmblocked, the window that lists the backups by threat and puts a
// threat's items back or throws their backups away.
#pragma once

#include <string>

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmBlocked : public ui::Form {
  public:
    FrmBlocked();

    void Form_Load() override;
    // lvBackup from BackupRecords: one row per backup of a known kind.
    void DisplayRollback();
    // lvback from lvBackup: each threat once, in the order of first appearance.
    void LoadData();
    // Puts every checked row of lvBackup back, then rewrites Backup.Dat.
    void RestoreSelected();

    // Buttons act on the press of the left button (1); other buttons do nothing.
    void Image1_MouseDown(int button);  // close
    void Image2_MouseDown(int button);  // restore the selected threats
    void Image3_MouseDown(int button);  // delete the selected threats' backups
    void Image4_MouseDown(int button);  // delete every backup
    void lvback_ColumnClick(int column);

    ui::ImageButton Image1{*this, "Image1"};
    ui::ImageButton Image2{*this, "Image2"};
    ui::ImageButton Image3{*this, "Image3"};
    ui::ImageButton Image4{*this, "Image4"};
    ui::ImageButton Image15{*this, "Image15"};
    ui::ListView lvback{*this, "lvback"};      // one row per threat
    ui::ListView lvBackup{*this, "lvBackup"};  // hidden: one row per backup
    ui::Label rt1{*this, "rt1"};               // the explanation

  private:
    // Checks the rows of lvBackup that belong to `threat`, compared in lower case.
    void CheckThreat(const std::string& threat);
    // Wipes the backup of every checked row and takes the row out, from the last up.
    void DropCheckedBackups();
    void SelectFirstThreat();
};

FrmBlocked& frmblocked();

}  // namespace orvex
