// ExcludePage.h: frmexclude, the window that shows the allowed items by threat and lets
// the user take threats off the list again.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmExclude : public ui::Form {
  public:
    FrmExclude();

    void Form_Load() override;
    // Fills lvE1 with one row per threat of lvExclusion.
    void LoadData();
    // Takes the selected threats of lvE1, with all their records, off the list.
    void cmdRemove_Click();

    // Buttons act on the press of the left button (1); other buttons do nothing.
    void Image1_MouseDown(int button);   // close
    void Image2_MouseDown(int button);   // remove
    void Image15_MouseDown(int button);  // help
    void lvE1_Click() { ListTouched = true; }
    void lvE1_BeforeLabelEdit() { ListTouched = true; }

    ui::ImageButton Image1{*this, "Image1"};
    ui::ImageButton Image2{*this, "Image2"};
    ui::ImageButton Image15{*this, "Image15"};
    ui::ListView lvE1{*this, "lvE1"};                // one row per threat
    ui::ListView lvExclusion{*this, "lvExclusion"};  // hidden: one row per record
    ui::Label rt1{*this, "rt1"};                     // the explanation

    // Raised by the click and label-edit events of lvE1; nothing else reads it.
    bool ListTouched = false;
};

FrmExclude& frmexclude();

// Adds a row to frmexclude.lvExclusion for each allowed record of a known kind.
void DisplayExclusions();
// Rewrites Exclude.dat from the rows of frmexclude.lvExclusion, then reads it back.
void ReWriteExclusion1();

}  // namespace orvex
