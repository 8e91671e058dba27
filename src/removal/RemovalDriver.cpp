// RemovalDriver.cpp: BlockAll and BlockSelected. Each row's texts are read once; what
// becomes of the row is decided by the word the scan log receives for it.
#include "removal/RemovalDriver.h"

#include <optional>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/FileHelper.h"
#include "platform/RegistryHelper.h"
#include "removal/BackupItem.h"
#include "removal/ComUnregister.h"
#include "removal/Deferred.h"
#include "scan/FileScan.h"
#include "scan/Lsp.h"
#include "scan/MemoryScan.h"
#include "scan/Recorder.h"
#include "scan/RemovalProgress.h"
#include "scan/ScanLogWrite.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kKindFile = "FileSystem";
constexpr const char* kKindKey = "Registry(Key)";
constexpr const char* kKindValue = "Registry(Value)";
constexpr const char* kLogKindRegistry = "Registry";

bool Cancelled() {
    return IsTrue(App().RemovalCancelled);
}

struct RowTexts {
    std::string threat, kind, location, name;
};

enum class Next { Row, LeaveLoop };

void Log(const std::string& location, const std::string& name, const char* word, const char* kind,
         const std::string& threat, std::int32_t& index) {
    ResumeNext([&] { ScanLogWrite(location, name, word, kind, threat, VbTrue, index); });
}

bool KeepsRegistration(const std::string& digest) {
    for (const std::string& line : Definitions().DoNotUnRegisterDefs.Items) {
        const std::vector<std::string> fields = Split(line, "|", -1, Compare::Text);
        if (!fields.empty() && fields[0] == digest) return true;
    }
    return false;
}

// False when the pass is to stop before the backup; a failed backup does not stop it.
bool BackUp(bool isFile, const std::string& item, const std::string& name,
            const std::string& rootName, std::string threat) {
    if (!IsTrue(App().BackupEnabled)) return true;
    if (Cancelled()) return false;
    ResumeNext([&] { BackupItem(isFile, item, name, rootName, threat); });
    return true;
}

Next RemoveFile(RowTexts& row, std::int32_t& index) {
    const std::string path = row.location + row.name;
    std::string digest;
    ResumeNext([&] { digest = MD5File(path); });
    const bool keepRegistration = KeepsRegistration(digest);
    if (Cancelled()) return Next::LeaveLoop;
    if (!keepRegistration) ResumeNext([&] { UnRegServer(path); });
    ui::DoEvents();
    if (!BackUp(true, row.location, row.name, "", row.threat)) return Next::LeaveLoop;
    ui::DoEvents();
    bool exists = false;
    ResumeNext([&] { exists = platform::FileHelper().FileExists(path); });
    if (!exists) {
        Log(row.location, row.name, "File In List Not Found", kKindFile, row.threat, index);
        return Next::Row;
    }
    bool wiped = false;
    ResumeNext([&] { wiped = WipeFile(path); });
    if (Cancelled()) return Next::LeaveLoop;
    Log(row.location, row.name, wiped ? "delete" : "Manual Intervention Required", kKindFile,
        row.threat, index);
    return Next::Row;
}

// The root named before the first backslash (an unknown name keeps the helper's root)
// and the key path after it.
struct RegistryPlace {
    std::string rootName, keyPath;
};

RegistryPlace PlaceOf(platform::RegistryHelper& reg, const std::string& location) {
    const std::size_t slash = location.find('\\');
    RegistryPlace place;
    // Without a backslash the root's name cannot be cut out and stays empty.
    if (slash != std::string::npos) place.rootName = location.substr(0, slash);
    place.keyPath = slash == std::string::npos ? location : location.substr(slash + 1);
    if (auto hive = platform::RegistryHelper::HiveOfName(place.rootName)) reg.RootKey(*hive);
    return place;
}

Next RemoveKey(platform::RegistryHelper& reg, RowTexts& row, std::int32_t& index) {
    RegistryPlace place = PlaceOf(reg, row.location);
    if (!row.name.empty() && !place.keyPath.ends_with('\\')) place.keyPath += '\\';
    const std::string keyPath = place.keyPath + row.name;
    reg.KeyPath(keyPath);
    if (!BackUp(false, place.rootName + "\\" + keyPath, row.name, place.rootName, row.threat))
        return Next::LeaveLoop;
    long result = 99;
    ResumeNext([&] { result = reg.DeleteKey(""); });
    if (result == 0) Log(row.location, row.name, "delete", kLogKindRegistry, row.threat, index);
    return Next::Row;
}

Next RemoveValue(platform::RegistryHelper& reg, RowTexts& row, std::int32_t& index) {
    ui::DoEvents();
    const RegistryPlace place = PlaceOf(reg, row.location);
    if (row.location.find('|') != std::string::npos) {
        const std::vector<std::string> parts = Split(place.keyPath, "|");
        reg.KeyPath(parts[0]);
        row.name = parts.size() > 1 ? parts[1] : "";
    } else {
        reg.KeyPath(place.keyPath);
    }
    // The backup holds the whole key that holds the value.
    if (!BackUp(false, row.location, row.name, place.rootName, row.threat)) return Next::LeaveLoop;
    ui::DoEvents();
    long result = 99;
    ResumeNext([&] { result = reg.DeleteValue(row.name); });
    ui::DoEvents();
    if (result == 0 || result == 2) {
        Log(row.location, row.name, "delete", kLogKindRegistry, row.threat, index);
        ResumeNext(
            [&] { SetDefaultRegistryValues(row.threat, reg.RootKey(), reg.KeyPath(), row.name); });
    }
    return Next::Row;
}

std::optional<RowTexts> CheckedRow(std::int32_t index) {
    std::optional<RowTexts> texts;
    ResumeNext([&] {
        const ScumRow& row = ScumListOfRun().row(index);
        if (row.checked) texts = RowTexts{row.name, row.category, row.location, row.item};
    });
    return texts;
}

Next RemoveRow(platform::RegistryHelper& reg, RowTexts& row, std::int32_t& index) {
    if (row.kind == kKindFile) return RemoveFile(row, index);
    if (row.kind == kKindKey) return RemoveKey(reg, row, index);
    if (row.kind == kKindValue) return RemoveValue(reg, row, index);
    return Next::Row;  // "Memory Resident" and any other kind stay in the list
}

}  // namespace

void BlockAll(const std::string& name) {
    Procedure proc("Module1", "BlockAll");
    proc.Run([&] {
        ScumList& rows = ScumListOfRun();
        if (rows.empty()) return;
        if (!name.empty()) {
            const std::string wanted = LCase(name);
            for (std::int32_t i = 1; i <= rows.count(); ++i) {
                if (LCase(rows.row(i).name) != wanted) continue;
                rows.setChecked(i, true);
                ui::DoEvents();
            }
        }
        App().RestartNeeded = VbFalse;
        BlockSelected();
    });
}

void BlockSelected() {
    platform::RegistryHelper reg;
    App().StopRequested = VbFalse;
    ResumeNext([] {
        if (IsTrue(LSPCheck())) App().RestartNeeded = VbTrue;
    });
    VbBool killMode = VbTrue;
    ResumeNext([&] { ScanMemory(killMode); });
    for (std::int32_t i = ScumListOfRun().count(); i >= 1 && !Cancelled(); --i) {
        TheRemovalProgress().RowStarting(i);
        ui::DoEvents();
        std::optional<RowTexts> row = CheckedRow(i);
        if (row) {
            if (Cancelled()) break;
            std::int32_t index = i;
            if (RemoveRow(reg, *row, index) == Next::LeaveLoop) break;
        }
        ui::DoEvents();
    }
}

void SetDefaultRegistryValues(const std::string& threat, platform::Hive root,
                              const std::string& keyPath, const std::string& valueName) {
    if (threat != "Prolivation" && threat != "IEReset") return;
    platform::RegistryHelper reg;
    reg.RootKey(root);
    reg.KeyPath(keyPath);
    reg.SetValue(valueName, "http://", platform::regtype::kSz);
}

}  // namespace orvex
