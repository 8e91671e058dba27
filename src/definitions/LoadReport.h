// LoadReport.h: what the definition load tells the main window, in the order the load
// goes: the file read or missing, the lists cleared, the date, the scan allowed, the end.
#pragma once

#include <string>

#include "core/Reporter.h"

namespace orvex {

class LoadReport {
  public:
    virtual ~LoadReport() = default;
    // ovsdef.dat was read: updates and scans may be asked for.
    virtual void DefinitionFileRead() {}
    // There is no ovsdef.dat: only an update can help. The loader's message box follows.
    virtual void DefinitionFileMissing() {}
    // The list of definition files was emptied.
    virtual void FileListCleared() {}
    // The definition date as loaded; empty when the files gave none.
    virtual void DefinitionDate(const std::string& date) { (void)date; }
    // The tables are sorted and usable: the scan may start.
    virtual void ScanAllowed() {}
    // The load is over, with the date it ended on.
    virtual void LoadFinished(const std::string& date) { (void)date; }
};

inline LoadReport& TheLoadReport() {
    return Reporter<LoadReport>::Get();
}

}  // namespace orvex
