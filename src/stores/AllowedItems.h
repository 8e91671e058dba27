// AllowedItems.h: the allowed items store, Exclude.dat, and its records in memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

// The kinds an allowed item can have; rows of any other kind are not shown.
inline constexpr const char* kKindFileSystem = "FileSystem";
inline constexpr const char* kKindRegistryKey = "Registry(Key)";
inline constexpr const char* kKindRegistryValue = "Registry(Value)";

// One allowed finding. The file keeps the kind last; in memory it comes second.
struct ExclusionRecord {
    std::string ThreatName;
    std::string ItemKind;
    std::string ItemLocation;
    std::string ItemName;
};

// The records of Exclude.dat, numbered 1 to Count() as the classic array was.
class ExclusionTable {
  public:
    std::int32_t Count() const { return static_cast<std::int32_t>(records_.size()); }
    // Record `index`, 1..Count(); failure 9 outside.
    const ExclusionRecord& operator[](std::int32_t index) const;
    ExclusionRecord& operator[](std::int32_t index);
    void Add(ExclusionRecord record);
    void Clear() { records_.clear(); }

    // Records 1..Count() in order, for range-for walks.
    std::vector<ExclusionRecord>::const_iterator begin() const { return records_.begin(); }
    std::vector<ExclusionRecord>::const_iterator end() const { return records_.end(); }

  private:
    std::vector<ExclusionRecord> records_;  // records_[0] is record 1
};

// The one table of the process.
ExclusionTable& ExclusionRecords();

// App().AppPath + "\Exclude.dat".
std::string ExcludeDatPath();

// Reads Exclude.dat into ExclusionRecords; an absent file gives an empty table.
void LoadExclusion();
// Rewrites Exclude.dat from ExclusionRecords, then reads it back.
void WriteExclusions();
// Rewrites Exclude.dat from `records` in one step, then reads it back, so that the table
// always shows what the file holds, also when the rewrite failed and the old file stayed.
// Failures are logged under `procedure`.
void RewriteExclusions(const char* procedure, const std::vector<ExclusionRecord>& records);
// Whether the finding is on the allowed list: threat and item names without regard to
// case, kind and location exactly. With no [Exclusion] definitions loaded nothing is.
bool OnAllowedList(const std::string& location, const std::string& item, const std::string& name,
                   const std::string& category);
// One of the three kinds above; records of other kinds stay in the file but are not shown.
bool IsKnownKind(const std::string& kind);

}  // namespace orvex
