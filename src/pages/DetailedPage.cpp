// DetailedPage.cpp: frmdetailed.
#include "pages/DetailedPage.h"

#include <utility>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"

namespace orvex {
namespace {

constexpr const char* kModule = "frmdetailed";
constexpr const char* kNoDetails = " No details available.";
constexpr int kLeftButton = 1;
constexpr int kPictureDown = 2;
constexpr int kNoExplanation = 0;

// Category words and their explanations, compared in this order. "Cookies" has none, and
// the Retrospy row is compared with the literal text "LngArray(1204)", so neither ever
// gets more than the default; both are kept as the program always had them.
struct Explained {
    int category;  // 0: the literal below
    int explanation;
};
constexpr const char* kRetrospyLiteral = "LngArray(1204)";
constexpr Explained kExplanations[] = {
    {1193, 1192}, {1194, kNoExplanation}, {1195, 1178}, {1196, 1191}, {1197, 1188}, {1198, 1181},
    {1199, 1180}, {1200, 1189},           {1201, 1177}, {1202, 1183}, {1203, 1187}, {0, 1184},
    {1205, 1179}, {1206, 1182},           {1207, 1173}, {1208, 1210}, {1209, 1172}, {1227, 1172}};

}  // namespace

FrmDetailed::FrmDetailed() : Form("frmdetailed") {
    rtbdetail.Locked = true;
    Image1.Click = [this] { Image1_MouseDown(kLeftButton); };
}

void FrmDetailed::Form_Load() {
    Left = App().WindowLeft;
    Top = App().WindowCentreY - Height / 2;
}

void FrmDetailed::Display(std::string& categories) {
    Procedure proc(kModule, "Display");
    proc.Run([&] {
        rtbdetail.Clear();
        for (std::string piece : Split(categories, ",", -1, Compare::Text)) {
            AddTextRTB(Trim(piece) + ":", true);
            AddTextRTB("     " + GetItemDetail(piece), false);
            AddTextRTB("\r\n\r\n", false);
        }
    });
}

std::string FrmDetailed::GetItemDetail(std::string& category) {
    std::string result = kNoDetails;
    Procedure proc(kModule, "GetItemDetail");
    proc.Run([&] {
        const std::string wanted = Trim(category);
        for (const Explained& row : kExplanations) {
            const std::string word = row.category == 0 ? kRetrospyLiteral : Lng(row.category);
            if (wanted != word) continue;
            if (row.explanation != kNoExplanation) result = Lng(row.explanation);
            return;
        }
    });
    return result;
}

void FrmDetailed::AddTextRTB(const std::string& text, bool bold) {
    rtbdetail.SelBold = bold;
    rtbdetail.SelText(text);
}

void FrmDetailed::Image1_MouseDown(int button) {
    if (button != kLeftButton) return;
    Image1.Picture = kPictureDown;
    ui::Unload(*this);
}

FrmDetailed& frmdetailed() {
    return ui::TheForm<FrmDetailed>();
}

}  // namespace orvex
