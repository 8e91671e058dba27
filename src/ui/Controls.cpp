// Controls.cpp: control registration, image buttons following the mouse, the text box's
// change event and list sorting.
#include "ui/Controls.h"

#include <algorithm>

#include "platform/AnsiCase.h"
#include "ui/Form.h"
#include "ui/UiHost.h"

namespace orvex::ui {

Control::Control(Form& owner, std::string name, int index)
    : Name(std::move(name)), Index(index), owner_(owner) {
    owner.Register(*this);
}

std::string RichTextBox::Text() const {
    std::string text;
    for (const TextRun& run : Runs)
        text += run.Text;
    return text;
}

void ImageButton::SetPictures(int normal, int over, int down) {
    NormalPicture = normal;
    OverPicture = over;
    DownPicture = down;
    Picture = normal;
}

void ImageButton::OnMouseMove() {
    if (OverPicture != 0) Picture = OverPicture;
    if (MouseMove) MouseMove();
}

void ImageButton::OnMouseDown(int button) {
    constexpr int kLeftButton = 1;
    if (button != kLeftButton) return;
    if (DownPicture != 0) Picture = DownPicture;
    if (Click) Click();
}

void ImageButton::OnMouseUp() {
    if (NormalPicture != 0) Picture = NormalPicture;
    if (MouseUp) MouseUp();
}

void ShowNormalPictures(Form& form) {
    for (Control* control : form.Controls())
        if (auto* button = dynamic_cast<ImageButton*>(control); button && button->NormalPicture)
            button->Picture = button->NormalPicture;
}

void TextBox::SetText(std::string text) {
    text_ = std::move(text);
    if (Change) Change();
}

namespace {

const std::string& Cell(const ListItem& row, int column) {
    static const std::string kEmpty;
    if (column == 0) return row.Text;
    const auto at = static_cast<std::size_t>(column - 1);
    return at < row.SubItems.size() ? row.SubItems[at] : kEmpty;
}

bool LessNoCase(const std::string& a, const std::string& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(platform::AnsiLower(x)) <
               static_cast<unsigned char>(platform::AnsiLower(y));
    });
}

}  // namespace

void DoSort(ListView& list, int column, int order) {
    list.SortKey = column;
    list.SortOrder = order;
    const bool descending = order == kSortDescending;
    std::stable_sort(list.ListItems.begin(), list.ListItems.end(),
                     [&](const ListItem& a, const ListItem& b) {
                         return descending ? LessNoCase(Cell(b, column), Cell(a, column))
                                           : LessNoCase(Cell(a, column), Cell(b, column));
                     });
}

void SortOnColumnClick(ListView& list, int column) {
    const bool ascendingNow = list.SortKey == column && list.SortOrder == kSortAscending;
    Host().SetMousePointer(pointer::kHourglass);
    DoSort(list, column, ascendingNow ? kSortDescending : kSortAscending);
    Host().SetMousePointer(pointer::kArrow);
}

}  // namespace orvex::ui
