// UsageReport.cpp: the line of ovsstat.ph and the category text of an item.
#include "logs/UsageReport.h"

#include <vector>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "core/TextFile.h"
#include "definitions/DefinitionTables.h"
#include "stores/AllowedItems.h"

namespace orvex {
namespace {

struct CategoryWord {
    const char* word;
    int index;
};

// The category words of the definitions and their texts in LngArray.
constexpr CategoryWord kCategoryWords[] = {
    {"Adware", 1193},
    {"Cookies", 1194},
    {"Homepage Hijacker", 1195},
    {"Searchpage Hijacker", 1196},
    {"Rogue Activex", 1197},
    {"Drive by Download", 1198},
    {"BHO", 1199},
    {"Emailer", 1200},
    {"Keylogger", 1201},
    {"Dialer", 1202},
    {"Rat", 1203},
    {"Retrospy", 1204},
    {"Trojan", 1205},
    {"Malware", 1206},
    {"Thiefware", 1207},
    {"Dataminer", 1208},
    {"Spyware", 1209},
    {"Surveillance Software", 1227},
};

// The text of a category word; an unknown word (compared exactly) gives an
// empty text.
std::string CategoryText(const std::string& word) {
    for (const auto& entry : kCategoryWords)
        if (word == entry.word) return Lng(entry.index);
    return {};
}

// Field 2 of the first [ItemList] line of the item that lists any categories.
std::string CategoryCodes(const std::string& itemName) {
    const std::string lowerName = LCase(itemName);
    for (const std::string& line : Definitions().ItemListDefs.Items) {
        if (Occurs(line, "|") < 3) continue;
        std::vector<std::string> fields = Split(line, "|");
        if (LCase(fields[0]) == lowerName && !fields[2].empty()) return fields[2];
    }
    return {};
}

// The category word of a one-character code; empty when no [Descriptions] line
// has it.
std::string CategoryWordOf(const std::string& code, bool& found) {
    for (const std::string& line : Definitions().DescriptionDefs.Items) {
        if (line.find('|') == std::string::npos) continue;
        std::vector<std::string> fields = Split(line, "|");
        if (fields[0] == code) {
            found = true;
            return fields[1];
        }
    }
    found = false;
    return {};
}

// The distinct names of the allowed items, in table order, each spelled as
// first seen.
std::string AllowedNames() {
    std::vector<std::string> names;
    for (const ExclusionRecord& record : ExclusionRecords()) {
        if (record.ThreatName.empty()) continue;
        const std::string lower = LCase(record.ThreatName);
        bool known = false;
        for (const std::string& name : names)
            known = known || LCase(name) == lower;
        if (!known) names.push_back(record.ThreatName);
    }
    return Join(names, ",");
}

void AppendUsageLine(const std::string& line) {
    TextFile file = TextFile::ForAppend(UsageReportPath());
    file.Print(line);
    file.Close();
}

}  // namespace

std::string UsageReportPath() {
    return App().DataFolder + "ovsstat.ph";
}

std::string GetItemDetail(const std::string& itemName) {
    std::string result;
    Procedure proc("frmdetails", "GetItemDetail");
    proc.Run([&] {
        for (char code : CategoryCodes(itemName)) {
            bool found = false;
            const std::string word = CategoryWordOf(std::string(1, code), found);
            if (!found) continue;
            result += ' ';
            result += CategoryText(word);
            result += ',';
        }
        if (EndsWith(result, ",")) result.pop_back();
        if (result.empty()) result = Lng(111);
    });
    return result;
}

void PhoneHome(const std::string& itemName, std::int32_t actionCode) {
    Procedure proc("Module2", "PhoneHome");
    proc.Run([&] {
        const std::string allowed = AllowedNames();
        const std::string name = LTrim(itemName);
        const std::string detail = GetItemDetail(name);
        const std::string line =
            name + "|" + detail + "|" + std::to_string(actionCode) + "|" + allowed;
        proc.Step([&] { AppendUsageLine(line); });
    });
}

}  // namespace orvex
