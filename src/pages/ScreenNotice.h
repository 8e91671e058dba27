// ScreenNotice.h: frmScreen, shown in place of the program when a screen reader runs.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmScreen : public ui::Form {
  public:
    FrmScreen();
    void Form_Load() override;

    ui::TextBox Text1{*this, "Text1"};
    ui::Label Label1{*this, "Label1"};
    ui::CommandButton Command1{*this, "Command1"};
};

FrmScreen& frmScreen();

}  // namespace orvex
