// Controls.h: the control models forms are made of. They hold what a window shows (texts,
// visibility, pictures, list rows, bar values); the Win32 renderer draws them and turns
// clicks into the owning form's event routines. No logic may depend on pixels.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orvex::ui {

class Form;

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
    int Left = 0, Top = 0, Width = 0, Height = 0;  // twips

  private:
    Form& owner_;
};

class Label : public Control {
  public:
    using Control::Control;
};

// A clickable picture; Picture selects one of its images (normal, hover, pressed, ...).
class ImageButton : public Control {
  public:
    using Control::Control;
    int Picture = 0;
    std::function<void()> Click;
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
};

// A text box whose Change handler runs whenever its text is set, as the schedule
// companion relies on when it writes into a hidden box.
class TextBox : public Control {
  public:
    using Control::Control;
    const std::string& Text() const { return text_; }
    void SetText(std::string text);
    std::function<void()> Change;

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

class MenuItem : public Control {
  public:
    using Control::Control;
    bool Checked = false;
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
};

inline constexpr int kSortAscending = 3;
inline constexpr int kSortDescending = 4;

// Sorts the rows as plain text by `column` (0 the text, n column n), ignoring case, as the
// list control sorts; rows that compare equal keep their order.
void DoSort(ListView& list, int column, int order);
// The order a click on `column` asks for: the other way round when the list is already
// sorted by it in ascending order.
int NextSortOrder(const ListView& list, int column);

class ListBox : public Control {
  public:
    using Control::Control;
    std::vector<std::string> Items;
    int ListIndex = -1;
};

}  // namespace orvex::ui
