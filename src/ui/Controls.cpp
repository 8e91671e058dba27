// Controls.cpp: control registration and the text box's change event.
#include "ui/Controls.h"

#include "ui/Form.h"

namespace orvex::ui {

Control::Control(Form& owner, std::string name, int index)
    : Name(std::move(name)), Index(index), owner_(owner) {
    owner.Register(*this);
}

void TextBox::SetText(std::string text) {
    text_ = std::move(text);
    if (Change) Change();
}

}  // namespace orvex::ui
