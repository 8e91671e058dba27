// Form.cpp: form instances, their loading on first use and their unloading.
#include "ui/Form.h"

#include <algorithm>
#include <utility>

#include "ui/UiHost.h"

namespace orvex::ui {
namespace {

struct LoadedForm {
    std::type_index type;
    std::unique_ptr<Form> form;
};

std::vector<LoadedForm>& Loaded() {
    static std::vector<LoadedForm> forms;
    return forms;
}

// An unloaded form may still be running the routine that unloaded it, so its instance is
// kept until the forms are reset instead of being destroyed under its own feet.
std::vector<std::unique_ptr<Form>>& Unloaded() {
    static std::vector<std::unique_ptr<Form>> forms;
    return forms;
}

}  // namespace

Form::Form(std::string name) : Name(std::move(name)) {}

void Form::Show(bool modal) {
    Host().ShowForm(*this, modal);
}

void Form::Hide() {
    Host().HideForm(*this);
}

Control* Form::FindControl(const std::string& name, int index) const {
    for (Control* c : controls_) {
        if (c->Name == name && c->Index == index) return c;
    }
    return nullptr;
}

namespace detail {

Form* FindLoaded(std::type_index type) {
    for (auto& entry : Loaded()) {
        if (entry.type == type) return entry.form.get();
    }
    return nullptr;
}

Form& Adopt(std::type_index type, std::unique_ptr<Form> form) {
    Form& ref = *form;
    Loaded().push_back({type, std::move(form)});
    ref.Form_Load();
    return ref;
}

}  // namespace detail

bool Unload(Form& form) {
    int cancel = 0;
    form.Form_Unload(cancel);
    if (cancel != 0) return false;
    auto& forms = Loaded();
    auto it = std::find_if(forms.begin(), forms.end(),
                           [&](const LoadedForm& e) { return e.form.get() == &form; });
    if (it == forms.end()) return true;
    form.Visible = false;
    Host().FormUnloaded(form);
    Unloaded().push_back(std::move(it->form));
    forms.erase(it);
    return true;
}

std::vector<Form*> LoadedForms() {
    std::vector<Form*> result;
    for (auto& entry : Loaded())
        result.push_back(entry.form.get());
    return result;
}

void ResetForms() {
    Loaded().clear();
    Unloaded().clear();
}

}  // namespace orvex::ui
