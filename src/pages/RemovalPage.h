// RemovalPage.h: frmremoval, the progress window that stands while a removal runs.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmRemoval : public ui::Form {
  public:
    FrmRemoval();

    void Form_Load() override;
    void Form_Unload(int& cancel) override;
    // Counts the rows the bar will step through and shows the window.
    void Intiate();
    // The cancel button (Image5), left button only.
    void Command1_Click();

    ui::Label Label1{*this, "Label1"};  // heading
    ui::Label Label2{*this, "Label2"};  // activity line
    ui::ProgressBar pb1{*this, "pb1"};  // one step per removed row
    ui::GifPlayer PlayGif1{*this, "PlayGif1"};
    ui::ImageButton Image5{*this, "Image5"};    // cancel
    ui::ImageButton Image15{*this, "Image15"};  // help
};

FrmRemoval& frmremoval();

}  // namespace orvex
