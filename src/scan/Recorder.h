// Recorder.h: the finding recorder: ScumList, the findings of the run, with List1 (one
// entry per distinct threat name) and ScumCount beside it, and the routines every scanner
// shares: ScumListDetailsAdd and ExclusionRoutine.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvex {

inline constexpr const char* kLevelConfirmed = "Confirmed";
inline constexpr const char* kLevelSuspect = "Suspect";
inline constexpr const char* kCategoryCookie = "Cookie";

// A row's icon index: 1, 2 or 3 by severity; cookies show none.
inline constexpr int kNoIcon = 0;

// One finding. A row is identified by its five texts together.
struct ScumRow {
    std::string name;      // item text: the threat's name
    std::string category;  // SubItems(1): "FileSystem", "Registry(Key)", ...
    std::string level;     // SubItems(2): "Confirmed" or "Suspect"
    std::string location;  // SubItems(3): folder, key path with hive name, ...
    std::string item;      // SubItems(4): file name, value name, CLSID, ...
    int icon = kNoIcon;
    bool checked = false;
};

// The findings in order of arrival. Rows are numbered 1 to count(), as the list view that
// shows them numbers its items, so indexes pass unchanged between removal, log and views.
// The texts of a row are fixed once added: an index of them answers the duplicate test.
class ScumList {
  public:
    std::int32_t count() const { return static_cast<std::int32_t>(rows_.size()); }
    bool empty() const { return rows_.empty(); }
    // Row `index`, 1..count(); failure 9 outside.
    const ScumRow& row(std::int32_t index) const;
    void setChecked(std::int32_t index, bool checked);

    // Appends as it stands; the duplicate rule is the recorder's, not the container's.
    void add(ScumRow row);
    // Takes row `index` out; the rows behind it move up by one. Failure 9 outside.
    void removeRow(std::int32_t index);
    void clear();

    // True when a row has these texts: level, location and category exactly, item and
    // name without regard to case.
    bool holds(const std::string& name, const std::string& category, const std::string& location,
               const std::string& item, const std::string& level) const;

    // Grows with every removal and clear, so a reader of the rows can tell whether rows
    // it saw may have gone.
    std::uint64_t removals() const { return removals_; }

    std::vector<ScumRow>::const_iterator begin() const { return rows_.begin(); }
    std::vector<ScumRow>::const_iterator end() const { return rows_.end(); }

  private:
    std::size_t slot(std::int32_t index) const;
    void forget(const ScumRow& row);

    std::vector<ScumRow> rows_;                           // rows_[0] is row 1
    std::unordered_map<std::string, std::int32_t> keys_;  // identity key -> rows holding it
    std::uint64_t removals_ = 0;
};

// List1: each distinct threat name once, in the spelling first seen. Entries are numbered
// from 0, as a list box numbers them. The review pages take names out of it directly.
class ThreatNameList {
  public:
    std::int32_t ListCount() const { return static_cast<std::int32_t>(names_.size()); }
    // Entry `index`, 0..ListCount()-1; failure 9 outside.
    const std::string& List(std::int32_t index) const;
    const std::vector<std::string>& Items() const { return names_; }
    void AddItem(std::string name);
    void RemoveItem(std::int32_t index);
    void Clear();

    // Grows with every change, so the recorder can tell when the list is no longer the
    // one it built.
    std::uint64_t edits() const { return edits_; }

  private:
    std::vector<std::string> names_;
    std::uint64_t edits_ = 0;
};

// The one ScumList and List1 of the program; they live as long as it does.
ScumList& ScumListOfRun();
ThreatNameList& List1OfRun();

// Records a finding unless an equal row exists; an empty level means "Confirmed". Keeps
// List1 and ScumCount, and shows the count on frmscan unless a stop was requested.
void ScumListDetailsAdd(std::string name, std::string category, std::string location,
                        std::string item, std::string level);

// Refines a hit on a file name by the [Exclusion] definitions. `fileName` is lower-case
// without path, `folder` ends in a backslash. 0 and 1 are a confirmed find, 2 a suspect,
// 4 a name the table does not hold, anything else no find.
std::int32_t ExclusionRoutine(std::string fileName, std::string folder, const std::string& threat);

}  // namespace orvex
