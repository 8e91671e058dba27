// Form.h: a window as a model. Each form type has one implicit instance that comes into
// being, and runs Form_Load, at its first use; it can be unloaded and loaded again.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <typeindex>
#include <vector>

#include "ui/Controls.h"

namespace orvex::ui {

enum class ScaleMode { Twips, Pixels };

class Form {
  public:
    explicit Form(std::string name);
    virtual ~Form() = default;
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    virtual void Form_Load() {}
    // Setting `cancel` to non-zero keeps the form loaded.
    virtual void Form_Unload(int& cancel) { (void)cancel; }
    virtual void Form_Activate() {}
    virtual void Form_Resize() {}
    // Keeps bars and pictures that belong at the form's edges there, before a resize moves
    // the other controls (see ResizeForm).
    virtual void PlaceEdgeControls() {}
    virtual void Form_MouseMove() {}
    virtual void Form_KeyPress(int key) { (void)key; }

    // Shows the form through the UI host; a modal show returns when the form is hidden.
    void Show(bool modal = false);
    void Hide();

    const std::vector<Control*>& Controls() const { return controls_; }
    Control* FindControl(const std::string& name, int index = -1) const;
    void Register(Control& control) { controls_.push_back(&control); }

    std::string Name;
    std::string Caption;
    std::string Tag;
    bool Visible = false;
    bool Enabled = true;
    int Left = 0, Top = 0, Width = 0, Height = 0;  // twips
    // The unit of the controls' geometry; pixels are those of a 96 dots-per-inch screen.
    ScaleMode Scale = ScaleMode::Twips;
    long BackColor = kDefaultColor;
    int Picture = 0;  // the background, an entry of ImageList; 0 none
    // The form's pictures by 1-based index, each the name of an image of the image set
    // (for example "scan", "scan_over", "scan_down", "scan_disabled").
    std::vector<std::string> ImageList;

  private:
    std::vector<Control*> controls_;
};

namespace detail {
Form* FindLoaded(std::type_index type);
Form& Adopt(std::type_index type, std::unique_ptr<Form> form);
}  // namespace detail

// The form's single instance, loaded (and its Form_Load run) at first use.
template <class F>
F& TheForm() {
    if (Form* loaded = detail::FindLoaded(typeid(F))) return static_cast<F&>(*loaded);
    return static_cast<F&>(detail::Adopt(typeid(F), std::make_unique<F>()));
}

template <class F>
bool IsLoaded() {
    return detail::FindLoaded(typeid(F)) != nullptr;
}

// Runs Form_Unload and, unless it cancels, destroys the instance; false when cancelled.
bool Unload(Form& form);
// The loaded forms in the order they were loaded.
std::vector<Form*> LoadedForms();
// Destroys every form without running Form_Unload (tests and process end).
void ResetForms();

}  // namespace orvex::ui
