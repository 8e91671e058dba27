// FormScaling.h: remembers the first geometry of a form and of its controls, and on each
// resize moves every control by the whole percentage the form has changed since then.
#pragma once

#include <string>
#include <vector>

#include "ui/Form.h"

namespace orvex::ui {

struct FormRecord {
    std::string name;
    int Left = 0, Top = 0, Width = 0, Height = 0;
};

struct ControlRecord {
    std::string name;
    int index = -1;
    bool line = false;
    int X1 = 0, Y1 = 0, X2 = 0, Y2 = 0;  // a line's ends
    int Left = 0, Top = 0, Width = 0, Height = 0;
    bool parked = false;  // the first left was negative: out of view
};

// The process's records, each filled from index 1 as they come, and the re-entry guard.
struct ScalingRecords {
    std::vector<FormRecord> forms;
    std::vector<ControlRecord> controls;
    bool resizing = false;
};
ScalingRecords& ScalingRecordsOfRun();

// Controls parked out of view sit at negative positions; they are measured as if in view.
inline constexpr int kParkingDistance = 75000;
int ActualPos(int position);

// 1-based index of the form's record by name; 0 when there is none yet.
int FindForm(const Form& form);
// Adds the form's record and a record for each of its controls that has none yet; controls
// are known by name and index alone, so a second form's namesake shares the first's record.
int AddForm(const Form& form);
// The new size as a whole percentage of the first (the form is recorded first if need be).
int PerWidth(const Form& form, int width);
int PerHeight(const Form& form, int height);

// Moves one control by the form's percentages; a tag starting "Resize=N" keeps it in place.
void ResizeControl(Control& control, const Form& form);
// The entry from a form's resize event.
void ResizeForm(Form& form);

}  // namespace orvex::ui
