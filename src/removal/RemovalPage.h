// RemovalPage.h: frmremoval, the progress window that stands while a removal runs.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

// The scan animation ("\scan.gif" of the program folder): it plays until stopped.
class GifPlayer : public ui::Control {
  public:
    using ui::Control::Control;
    void Play() { Playing = true; }
    void Stop() { Playing = false; }
    bool Playing = false;
};

class FrmRemoval : public ui::Form {
  public:
    FrmRemoval();

    ui::Label Label1{*this, "Label1"};  // heading
    ui::Label Label2{*this, "Label2"};  // activity line
    ui::ProgressBar pb1{*this, "pb1"};  // one step per removed row
    GifPlayer PlayGif1{*this, "PlayGif1"};
    ui::ImageButton Image5{*this, "Image5"};    // cancel
    ui::ImageButton Image15{*this, "Image15"};  // help
};

FrmRemoval& frmremoval();

}  // namespace orvex
