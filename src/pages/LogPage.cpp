// LogPage.cpp: frmlog: loading both logs into their boxes, keeping only their tails.
#include "pages/LogPage.h"

#include <string>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/TextFile.h"
#include "logs/LogFile.h"
#include "pages/HelpFile.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

std::string ErrorLogPath() {
    return App().DataFolder + "ovs.ph";
}

// Drops the head of a box's text once it has grown past `limit`; true when it did.
bool TrimHead(std::string& text, std::size_t limit) {
    if (text.size() <= limit) return false;
    text.erase(0, FrmLog::kTrimStep);
    return true;
}

constexpr int kLeftButton = 1;
constexpr int kPictureDown = 2;

}  // namespace

FrmLog::FrmLog() : Form("frmlog") {
    Text1.Container = &Picture1;
    Text2.Container = &Picture2;
    Picture2.Visible = false;
    Image1.Click = [this] { Image1_MouseDown(kLeftButton); };
    Image2.Click = [this] { Image2_MouseDown(kLeftButton); };
    Image3.Click = [this] { Image3_Click(); };
    Image6.Click = [this] { ShowPage(2); };
    Image7.Click = [this] { ShowPage(1); };
    Image15.Click = [this] { Image15_MouseDown(kLeftButton); };
}

void FrmLog::Image1_MouseDown(int button) {
    if (button != kLeftButton) return;
    Image1.Picture = kPictureDown;
    const std::string log = App().AppPath + "\\logged.txt";
    if (platform::FileHelper().FileExists(log)) platform::Files().remove(log);
    LoadLogs();
}

void FrmLog::Image2_MouseDown(int button) {
    if (button != kLeftButton) return;
    Image2.Picture = kPictureDown;
    if (platform::FileHelper().FileExists(ErrorLogPath())) platform::Files().remove(ErrorLogPath());
    Text2.SetText("");
}

void FrmLog::Image3_Click() {
    Image3.Picture = kPictureDown;
    Hide();
    ui::DoEvents();
    ui::Unload(*this);
}

void FrmLog::Image15_MouseDown(int button) {
    if (button == kLeftButton) OpenHelpFile();
}

void FrmLog::ShowPage(int page) {
    Picture1.Visible = page == 1;
    Picture2.Visible = page == 2;
}

void FrmLog::Form_Load() {
    LoadLogs();
    if (Truncated && !Text2.Text().empty()) ShortenErrorLog();
}

void FrmLog::LoadLogs() {
    Procedure proc("frmlog", "LoadLogs");
    ui::Host().SetMousePointer(ui::pointer::kHourglass);
    proc.Run([&] {
        Text1.SetText("");
        Text2.SetText("");
        Truncated = false;
        LoadScanLog();
        LoadErrorLog();
    });
    ui::Host().SetMousePointer(ui::pointer::kArrow);
}

void FrmLog::LoadScanLog() {
    if (!platform::FileHelper().FileExists(LoggedTxtPath())) return;
    std::string text;
    ReadScanLog(LoggedTxtPath(), [&](const std::string& record) {
        text += "\r\n";
        text += record;
        if (TrimHead(text, kScanLogLimit)) Truncated = true;
        Text1.SetText(text);
        ui::DoEvents();
    });
}

void FrmLog::LoadErrorLog() {
    if (!platform::FileHelper().FileExists(ErrorLogPath())) return;
    TextFile file = TextFile::ForInput(ErrorLogPath());
    std::string text;
    while (!file.Eof()) {
        text += file.LineInput();
        text += "\r\n";
        if (TrimHead(text, kErrorLogLimit)) Truncated = true;
        Text2.SetText(text);
        ui::DoEvents();
    }
    file.Close();
}

// Shortens the error log to the tail the box shows, even when only the scan log was long.
void FrmLog::ShortenErrorLog() {
    Procedure proc("frmlog", "Form_Load");
    proc.Run([&] {
        TextFile file = TextFile::ForOutput(ErrorLogPath());
        file.Put(Text2.Text());
        file.Close();
    });
}

FrmLog& frmlog() {
    return ui::TheForm<FrmLog>();
}

}  // namespace orvex
