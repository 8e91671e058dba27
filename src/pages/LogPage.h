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

    ui::TextBox Text1{*this, "Text1"};  // scan log
    ui::TextBox Text2{*this, "Text2"};  // error log
    bool Truncated = false;             // LoadLogs dropped the head of a log

  private:
    void LoadScanLog();
    void LoadErrorLog();
    void ShortenErrorLog();
};

FrmLog& frmlog();

}  // namespace orvex
