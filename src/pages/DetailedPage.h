// DetailedPage.h: frmdetailed, which explains each category of the threat picked in the
// item list.
#pragma once

#include <string>

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmDetailed : public ui::Form {
  public:
    FrmDetailed();

    void Form_Load() override;
    // A heading and an explanation for each category of the comma-separated list.
    void Display(std::string& categories);
    // The explanation of one category, or " No details available." for one it does not know.
    std::string GetItemDetail(std::string& category);
    void AddTextRTB(const std::string& text, bool bold);
    void Image1_MouseDown(int button);  // close

    ui::Label Label1{*this, "Label1"};  // heading
    ui::RichTextBox rtbdetail{*this, "rtbdetail"};
    ui::ImageButton Image1{*this, "Image1"};
};

FrmDetailed& frmdetailed();

}  // namespace orvex
