// Controls.h: the control models forms are made of. They hold what a window shows (texts,
// visibility, pictures, list rows, bar values); the Win32 renderer draws them and turns
// clicks into the owning form's event routines. No logic may depend on pixels.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orvex::ui {

class Form;

// Colours are Windows COLORREF values (red in the low byte); this one means "as the system
// draws it".
inline constexpr long kDefaultColor = -1;

class Control {
  public:
    // Registers itself with its form; `index` >= 0 makes it an element of a control array.
    Control(Form& owner, std::string name, int index = -1);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Form& Parent() const { return owner_; }
    bool IsArrayElement() const { return Index >= 0; }

    std::string Name;
    int Index = -1;
    std::string Caption;
    std::string ToolTipText;
    std::string Tag;
    bool Visible = true;
    bool Enabled = true;
    int Left = 0, Top = 0, Width = 0, Height = 0;  // in the form's scale
    // The control it sits in (a page or frame); its position is then inside that one's.
    Control* Container = nullptr;
    long BackColor = kDefaultColor;
    long ForeColor = kDefaultColor;
    int FontSize = 0;  // points; 0 the form's font
    bool FontBold = false;

  private:
    Form& owner_;
};

class Label : public Control {
  public:
    using Control::Control;
    int Alignment = 0;            // 0 left, 1 right, 2 centre
    std::function<void()> Click;  // a few labels act as links
};

// A clickable picture; Picture selects one image of the form's ImageList (normal, hover,
// pressed, disabled). Click runs on the left button's press, as the program's buttons act.
class ImageButton : public Control {
  public:
    using Control::Control;
    // Its pictures: normal, under the mouse ("_over") and pressed ("_down"); 0 for a picture
    // the button does not change by itself.
    void SetPictures(int normal, int over, int down);
    // The mouse events as the window passes them on: the pictures follow the mouse, and the
    // command runs on the press of the left button (1) only, not on its release.
    void OnMouseMove();
    void OnMouseDown(int button);
    void OnMouseUp();

    int Picture = 0;
    int NormalPicture = 0, OverPicture = 0, DownPicture = 0;
    std::function<void()> Click;
    std::function<void()> MouseMove;
    std::function<void()> MouseUp;
};

// A mouse move over the form or one of its pages: every image button shows its normal picture.
void ShowNormalPictures(Form& form);

// A picture that may hold other controls, as the pages of a paged form do.
class PictureBox : public Control {
  public:
    using Control::Control;
    int Picture = 0;  // 0 none
    std::function<void()> Click;
    std::function<void(int key)> KeyPress;
};

// One stretch of a rich text box's text with the formatting it was inserted with.
struct TextRun {
    std::string Text;
    bool Bold = false;
    bool Bullet = false;
    int FontSize = 8;
    int HangingIndent = 0;
};

// A rich text box that is only ever written at its end: each insert takes the selection's
// formatting as it stands.
class RichTextBox : public Control {
  public:
    using Control::Control;
    void SelText(std::string text) {
        Runs.push_back({std::move(text), SelBold, SelBullet, SelFontSize, SelHangingIndent});
    }
    void Clear() { Runs.clear(); }
    std::string Text() const;

    std::vector<TextRun> Runs;
    bool Locked = false;  // the user can select and copy, not edit
    bool SelBold = false;
    bool SelBullet = false;
    int SelFontSize = 8;
    int SelHangingIndent = 0;
};

// A drawn line; its place is its two ends, not a rectangle.
class Line : public Control {
  public:
    using Control::Control;
    int X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;
};

class CommandButton : public Control {
  public:
    using Control::Control;
    std::function<void()> Click;
};

class CheckBox : public Control {
  public:
    using Control::Control;
    int Value = 0;  // 0 clear, 1 checked
    std::function<void()> Click;
};

class OptionButton : public Control {
  public:
    using Control::Control;
    bool Value = false;
    std::function<void()> Click;
};

class ComboBox : public Control {
  public:
    using Control::Control;
    std::vector<std::string> Items;
    int ListIndex = -1;
    std::string Text;
    std::function<void()> Click;
};

// A text box whose Change handler runs whenever its text is set, as the schedule
// companion relies on when it writes into a hidden box.
class TextBox : public Control {
  public:
    using Control::Control;
    const std::string& Text() const { return text_; }
    void SetText(std::string text);
    std::function<void()> Change;
    std::function<void(int key)> KeyPress;
    bool MultiLine = false;
    bool Locked = false;

  private:
    std::string text_;
};

class ProgressBar : public Control {
  public:
    using Control::Control;
    int Min = 0;
    int Max = 100;
    int Value = 0;
};

// The scan animation ("\scan.gif" of the program folder): it plays until stopped.
class GifPlayer : public Control {
  public:
    using Control::Control;
    void Play() { Playing = true; }
    void Stop() { Playing = false; }
    bool Playing = false;
};

class Timer : public Control {
  public:
    using Control::Control;
    int Interval = 0;  // milliseconds
    std::function<void()> Tick;
};

// A menu command or a menu of commands: items whose ParentMenu names another item are its
// entries, in the order they were made; the others stand on the menu bar.
class MenuItem : public Control {
  public:
    using Control::Control;
    bool Checked = false;
    std::string ParentMenu;
    std::function<void()> Click;
};

struct ListItem {
    std::string Text;
    std::vector<std::string> SubItems;  // columns 2.. of the row
    int SmallIcon = 0;
    bool Checked = false;
    bool Selected = false;
    std::string Tag;
};

class ListView : public Control {
  public:
    using Control::Control;
    std::vector<std::string> ColumnHeaders;
    std::vector<ListItem> ListItems;
    bool Checkboxes = false;
    int SortKey = 0;  // the column last sorted by: 0 the text, n column n
    int SortOrder = 0;
    std::function<void(int column)> ColumnClick;  // 0 the first column
    std::function<void(ListItem& row)> ItemCheck;
    std::function<void(ListItem& row)> ItemClick;
    std::function<void()> DblClick;
};

inline constexpr int kSortAscending = 3;
inline constexpr int kSortDescending = 4;

// Sorts the rows as plain text by `column` (0 the text, n column n), ignoring case, as the
// list control sorts; rows that compare equal keep their order.
void DoSort(ListView& list, int column, int order);
// A click on the head of `column`: ascending, or the other way round when the list is
// already sorted by it in ascending order; the hourglass shows meanwhile.
void SortOnColumnClick(ListView& list, int column);

class ListBox : public Control {
  public:
    using Control::Control;
    std::vector<std::string> Items;
    int ListIndex = -1;
    std::function<void()> Click;
};

}  // namespace orvex::ui
