// SuccessPage.cpp: frmsuccess.
#include "pages/SuccessPage.h"

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "pages/HelpFile.h"
#include "removal/Deferred.h"
#include "ui/FormScaling.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kModule = "frmsuccess";
constexpr int kLeftButton = 1;
constexpr int kPictureDown = 2;
constexpr std::int32_t kForcedReboot = 6;  // reboot, forced: other programs' work is lost

}  // namespace

FrmSuccess::FrmSuccess() : Form("frmsuccess") {
    Scale = ui::ScaleMode::Pixels;  // the buttons' places below are in pixels
    Image1.Click = [this] { Image1_MouseDown(kLeftButton); };
    cmdrestart.Click = [this] { cmdRestart_Click(kLeftButton); };
    Image15.Click = [this] { Image15_MouseDown(kLeftButton); };
}

void FrmSuccess::Form_Load() {
    Procedure proc(kModule, "Form_Load");
    proc.Run([&] {
        WriteResult();
        PlaceButtons();
    });
}

void FrmSuccess::Form_Activate() {
    ui::ResizeForm(*this);
    WriteResult();
    PlaceButtons();
}

void FrmSuccess::Form_Resize() {
    ui::ResizeForm(*this);
}

void FrmSuccess::Form_Unload(int&) {
    if (!IsTrue(App().Navigating)) EndProgram();
}

// The restart offered, or the finish alone, by RestartNeeded and nothing else.
void FrmSuccess::WriteResult() {
    rt1.Clear();
    AddTextRTB(Lng(118) + std::to_string(App().ThreatCount) + Lng(119), false);
    if (IsTrue(App().RestartNeeded)) {
        AddTextRTB(Lng(122), false);
        AddTextRTB(Lng(123), true);
        AddTextRTB(Lng(124), false);
    }
    AddTextRTB(Lng(125), true);
    AddTextRTB(Lng(126), false);
}

void FrmSuccess::PlaceButtons() {
    const bool high = IsTrue(App().HighDpi);
    if (IsTrue(App().RestartNeeded)) {
        Image1.Left = 248;
        cmdrestart.Left = 176;
        cmdrestart.Visible = true;
        return;
    }
    cmdrestart.Visible = false;
    Image1.Visible = true;
    Image1.Left = high ? 270 : 224;
    Image1.Top = cmdrestart.Top = high ? 300 : 240;
}

void FrmSuccess::AddTextRTB(const std::string& text, bool bold) {
    rt1.SelBold = bold;
    rt1.SelText(text);
}

// A restart that fails leaves no trace: the program ends all the same.
void FrmSuccess::cmdRestart_Click(int button) {
    if (button != kLeftButton) return;
    cmdrestart.Picture = kPictureDown;
    Procedure proc(kModule, "cmdRestart_Click");
    proc.Run([] { ExitWindows(kForcedReboot); });
    EndProgram();
}

void FrmSuccess::Image1_MouseDown(int button) {
    if (button != kLeftButton) return;
    Image1.Picture = kPictureDown;
    Hide();
    EndProgram();
}

void FrmSuccess::Image15_MouseDown(int button) {
    if (button == kLeftButton) OpenHelpFile();
}

void FrmSuccess::EndProgram() {
    ReleaseSingleInstanceMutex();
    ui::End();
}

FrmSuccess& frmsuccess() {
    return ui::TheForm<FrmSuccess>();
}

}  // namespace orvex
