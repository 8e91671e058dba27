// FormScaling.cpp: the first geometry of forms and controls, and the percentage moves.
#include "ui/FormScaling.h"

#include <cstdint>
#include <limits>

#include "core/ErrorHandler.h"
#include "core/Text.h"

namespace orvex::ui {
namespace {

constexpr const char* kModule = "Module2";

int FindControlRecord(const Control& control) {
    const auto& records = ScalingRecordsOfRun().controls;
    for (std::size_t i = 0; i < records.size(); ++i)
        if (records[i].name == control.Name && records[i].index == control.Index)
            return static_cast<int>(i) + 1;
    return 0;
}

void AddControlRecord(const Control& control) {
    ControlRecord record{control.Name, control.Index};
    if (const auto* line = dynamic_cast<const Line*>(&control)) {
        record.line = true;
        record.X1 = ActualPos(line->X1);
        record.X2 = ActualPos(line->X2);
        record.Y1 = line->Y1;
        record.Y2 = line->Y2;
    } else {
        record.parked = control.Left < 0;
        record.Left = ActualPos(control.Left);
        record.Top = control.Top;
        record.Width = control.Width;
        record.Height = control.Height;
    }
    ScalingRecordsOfRun().controls.push_back(record);
}

// New size times 100 over the first size, in whole numbers, as the classic "\" divides.
int Percentage(const char* procedure, const Form& form, int size, int FormRecord::*first) {
    int percent = 0;
    Procedure proc(kModule, procedure);
    proc.Run([&] {
        int found = FindForm(form);
        if (found == 0) found = AddForm(form);
        const int base = ScalingRecordsOfRun().forms.at(static_cast<std::size_t>(found - 1)).*first;
        if (base == 0) Raise(failure::kDivisionByZero);
        const std::int64_t scaled = std::int64_t{size} * 100 / base;
        if (scaled > std::numeric_limits<int>::max() || scaled < std::numeric_limits<int>::min())
            Raise(failure::kOverflow);
        percent = static_cast<int>(scaled);
    });
    return percent;
}

int Scaled(int first, int percent) {
    return static_cast<int>(std::int64_t{first} * percent / 100);
}

}  // namespace

ScalingRecords& ScalingRecordsOfRun() {
    static ScalingRecords records;
    return records;
}

int ActualPos(int position) {
    return position < 0 ? position + kParkingDistance : position;
}

int FindForm(const Form& form) {
    const auto& forms = ScalingRecordsOfRun().forms;
    for (std::size_t i = 0; i < forms.size(); ++i)
        if (forms[i].name == form.Name) return static_cast<int>(i) + 1;
    return 0;
}

int AddForm(const Form& form) {
    auto& forms = ScalingRecordsOfRun().forms;
    forms.push_back({form.Name, form.Left, form.Top, form.Width, form.Height});
    for (const Control* control : form.Controls())
        if (FindControlRecord(*control) == 0) AddControlRecord(*control);
    return static_cast<int>(forms.size());
}

int PerWidth(const Form& form, int width) {
    return Percentage("PerWidth", form, width, &FormRecord::Width);
}

int PerHeight(const Form& form, int height) {
    return Percentage("PerHeight", form, height, &FormRecord::Height);
}

void ResizeControl(Control& control, const Form& form) {
    if (control.Tag.compare(0, 8, "Resize=N") == 0) return;
    const int height = PerHeight(form, form.Height);
    const int width = PerWidth(form, form.Width);
    const int found = FindControlRecord(control);
    if (found == 0) return;
    const ControlRecord& first =
        ScalingRecordsOfRun().controls[static_cast<std::size_t>(found - 1)];
    if (LCase(first.name).find("image25") != std::string::npos) return;
    if (auto* line = dynamic_cast<Line*>(&control)) {
        line->X1 = Scaled(first.X1, width);
        line->X2 = Scaled(first.X2, width);
        line->Y1 = Scaled(first.Y1, height);
        line->Y2 = Scaled(first.Y2, height);
        return;
    }
    // A control that was parked out of view goes back out of view.
    control.Left = Scaled(first.Left, width) - (first.parked ? kParkingDistance : 0);
    control.Top = Scaled(first.Top, height);
    control.Width = Scaled(first.Width, width);
    control.Height = Scaled(first.Height, height);
}

void ResizeForm(Form& form) {
    ScalingRecords& records = ScalingRecordsOfRun();
    if (records.resizing) return;
    records.resizing = true;
    form.PlaceEdgeControls();
    // Twice, so that containers and what they hold end up in step.
    for (int pass = 0; pass < 2; ++pass)
        for (Control* control : form.Controls())
            ResumeNext([&] { ResizeControl(*control, form); });
    records.resizing = false;
}

}  // namespace orvex::ui
