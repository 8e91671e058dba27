// LogPage.h: frmlog, the viewer of the scan log and the error log.
#pragma once

#include "ui/Controls.h"
#include "ui/Form.h"

namespace orvex {

class FrmLog : public ui::Form {
  public:
    // The boxes show only the tail of a long log, cut in steps of this many characters.
    static constexpr std::size_t kScanLogLimit = 30000;
    static constexpr std::size_t kErrorLogLimit = 10000;
    static constexpr std::size_t kTrimStep = 1000;

    FrmLog();

    // Reads the deciphered scan log into Text1 and the error log into Text2.
    void LoadLogs();
    // Loads both logs; a trimmed view shortens ovs.ph for good to what Text2 shows.
    void Form_Load() override;

    // Buttons act on the press of the left button (1); other buttons do nothing.
    void Image1_MouseDown(int button);   // empty the scan log
    void Image2_MouseDown(int button);   // empty the error log
    void Image3_Click();                 // close
    void Image15_MouseDown(int button);  // help
    // The two pages: Image6 shows the second, Image7 the first.
    void ShowPage(int page);

    ui::PictureBox Picture1{*this, "Picture1"};  // the scan log's page
    ui::PictureBox Picture2{*this, "Picture2"};  // the error log's page
    ui::TextBox Text1{*this, "Text1"};           // scan log
    ui::TextBox Text2{*this, "Text2"};           // error log
    ui::ImageButton Image1{*this, "Image1"};
    ui::ImageButton Image2{*this, "Image2"};
    ui::ImageButton Image3{*this, "Image3"};
    ui::ImageButton Image6{*this, "Image6"};
    ui::ImageButton Image7{*this, "Image7"};
    ui::ImageButton Image15{*this, "Image15"};
    bool Truncated = false;  // LoadLogs dropped the head of a log

  private:
    void LoadScanLog();
    void LoadErrorLog();
    void ShortenErrorLog();
};

FrmLog& frmlog();

}  // namespace orvex
