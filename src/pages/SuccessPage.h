// SuccessPage.h: frmsuccess, the completion page after a removal: what was done, and the
// restart when the removal left work for the next start of the system.
#pragma once

#include <string>

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmSuccess : public ui::Form {
  public:
    FrmSuccess();

    void Form_Load() override;
    // Scales the page to its size, then writes the result and places the buttons again.
    void Form_Activate() override;
    // Ends the program unless the page is leaving for another one (Navigating).
    void Form_Unload(int& cancel) override;
    void Form_Resize() override;

    // Buttons act on the press of the left button (1); other buttons do nothing.
    void cmdRestart_Click(int button);   // restart Windows at once, then end
    void Image1_MouseDown(int button);   // finish
    void Image15_MouseDown(int button);  // help

    void AddTextRTB(const std::string& text, bool bold);

    ui::Label Label3{*this, "Label3"};  // heading
    ui::RichTextBox rt1{*this, "rt1"};  // the result
    ui::ImageButton Image1{*this, "Image1"};
    ui::ImageButton cmdrestart{*this, "cmdrestart"};
    ui::ImageButton Image15{*this, "Image15"};

  private:
    void WriteResult();
    void PlaceButtons();
    [[noreturn]] void EndProgram();
};

FrmSuccess& frmsuccess();

}  // namespace orvex
