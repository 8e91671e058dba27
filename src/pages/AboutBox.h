// AboutBox.h: frmHelp, the about box with the program's and the definitions' versions.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmHelp : public ui::Form {
  public:
    FrmHelp();

    void Form_Load() override;
    void Image1_Click();  // close

    ui::Label lblapp{*this, "lblapp"};
    ui::Label lbl1{*this, "lbl1"};  // the program's version
    ui::Label lbldef{*this, "lbldef"};
    ui::Label lbl2{*this, "lbl2"};  // the definition date
    ui::Label lblstatic{*this, "lblstatic"};
    ui::Label lbl3{*this, "lbl3"};  // the static definitions' version
    ui::ImageButton Image1{*this, "Image1"};
};

FrmHelp& frmHelp();

}  // namespace orvex
