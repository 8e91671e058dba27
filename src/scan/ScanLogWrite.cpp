// ScanLogWrite.cpp: one finding or removal step, passed to the store, the log, the
// recorder and the removal window in turn.
#include "scan/ScanLogWrite.h"

#include <new>

#include "core/AppState.h"
#include "core/TextFile.h"
#include "logs/ScanLog.h"
#include "platform/Failure.h"
#include "scan/Recorder.h"
#include "scan/RemovalProgress.h"
#include "stores/AllowedItems.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

void ApplyRemovalWord(const std::string& action, std::int32_t listIndex) {
    if (action == "File In List Not Found") {
        ScumListOfRun().removeRow(listIndex);
    } else if (action == "delete") {
        ui::DoEvents();
        ScumListOfRun().removeRow(listIndex);
        if (!IsTrue(App().RemovalCancelled)) TheRemovalProgress().RowDeleted();
    } else if (action == "Manual Intervention Required") {
        TheRemovalProgress().ManualRemovalNeeded();
    }
}

}  // namespace

VbBool ScanLogWrite(std::string location, std::string item, std::string action, std::string name,
                    std::string category, VbBool logOnly, std::int32_t& listIndex) {
    VbBool result = VbTrue;
    const bool allowed = OnAllowedList(location, item, name, category);
    if (allowed) {
        action = kExcludedWord;
        result = VbFalse;
    }
    // A failure from here on is silent: the file is closed and the finding goes unlisted.
    try {
        TextFile log = WriteScanLogRecord(action, location, item, name);
        ApplyRemovalWord(action, listIndex);
        log.Close();
        if (logOnly != VbTrue && !allowed)
            ScumListDetailsAdd(name, category, location, item,
                               action == "suspect" ? kLevelSuspect : "");
    } catch (const Failure&) {
    } catch (const std::bad_alloc&) {
    }
    return result;
}

}  // namespace orvex
