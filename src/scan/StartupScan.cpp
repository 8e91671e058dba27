// StartupScan.cpp: Run, Uninstall and SharedDlls scans.
#include "scan/StartupScan.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/RegistryHelper.h"
#include "scan/DigestWalk.h"
#include "scan/FileScan.h"
#include "scan/RegistryScan.h"
#include "scan/ScanLogWrite.h"
#include "scan/ScanProgress.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

using platform::FileHelper;
using platform::Hive;

constexpr const char* kModule = "RegistryModule";
constexpr const char* kRunKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const char* kUninstallKey = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr const char* kSharedDllsKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDlls";

bool Stopped() {
    return IsTrue(App().StopRequested);
}

void CountItem() {
    ++App().ItemsScanned;
    TheScanProgress().ItemsScanned(Lng(706), App().ItemsScanned);
}

void Report(const std::string& location, const std::string& item, const std::string& threat,
            const char* category) {
    std::int32_t listIndex = 0;
    ScanLogWrite(location, item, "found", threat, category, VbFalse, listIndex);
}

bool SameText(const std::string& a, const std::string& b) {
    return StrComp(a, b, Compare::Text) == 0;
}

// The "threat|name" fields of a definition line; std::nullopt for a line past the table's
// lines (it may have been reloaded during a yield) or a line without "|".
std::optional<std::vector<std::string>> DefinitionLine(const TextTable& table, std::int64_t i) {
    if (i >= table.Count || !table.InRange(i)) return std::nullopt;
    std::vector<std::string> fields = Split(table[static_cast<std::size_t>(i)], "|");
    if (fields.size() < 2) return std::nullopt;
    return fields;
}

// The long form of a short name; a long form that comes out shorter (unresolved) is none.
std::string LongForm(FileHelper& files, const std::string& path) {
    if (path.find('~') == std::string::npos) return path;
    std::string longName = files.LongName(path);
    return longName.size() >= path.size() ? longName : path;
}

// The file a Run command starts. The two roots clean in different orders on purpose: on
// the second root a quoted short name loses its quotes before the long form is taken.
std::string CleanCommand(std::string command, Hive root, FileHelper& files) {
    const std::size_t slash = command.find('/');
    if (slash != std::string::npos) command = command.substr(0, slash >= 1 ? slash - 1 : 0);
    const std::size_t comma = command.find(',');
    if (comma != std::string::npos) command = command.substr(0, comma);
    command = Replace(command, "rundll32.exe ", "", 1, -1, Compare::Text);
    if (root == Hive::LocalMachine) return removeChr34(LongForm(files, command));
    return LongForm(files, removeChr34(command));
}

struct RunValue {
    std::string valueName;
    std::string command;
    std::string fileName;
    std::string md5;
};

RunValue ReadRunValue(const std::string& item, Hive root, FileHelper& files) {
    const std::vector<std::string> fields = Split(item, "|");
    if (fields.size() < 2) Raise(failure::kSubscript);
    RunValue value;
    value.valueName = fields[1];
    value.command = CleanCommand(fields[0], root, files);
    value.fileName = LCase(FileHelper::FilePart(value.command));
    if (!value.command.empty()) value.md5 = MD5File(value.command);
    if (InStr(value.md5, kMd5FileNotFound) > 0) value.md5.clear();
    return value;
}

// One StartupDefs line against a Run value; true when it names the value.
bool LineNamesValue(const std::string& threat, const std::string& name, const RunValue& value) {
    if (!value.fileName.empty() && SameText(name, value.fileName)) {
        const std::string folder = FileHelper::FolderPart(value.command);
        const std::string file = LCase(FileHelper::FilePart(value.command));
        return IsTrue(ScumFile(file, folder, VbTrue));
    }
    return SameText(name, value.valueName) || SameText(threat, value.valueName);
}

// False when a stop request ended the scan.
bool ScanRunValue(const RunValue& value, Hive root, const std::string& location) {
    bool found = false;
    const TextTable& defs = Definitions().StartupDefs;
    for (std::int64_t i = 0; i < defs.Count; ++i) {
        ui::DoEvents();
        if (root == Hive::CurrentUser && Stopped()) return false;
        const auto fields = DefinitionLine(defs, i);
        if (!fields) continue;
        if (LineNamesValue((*fields)[0], (*fields)[1], value)) {
            found = true;
            Report(location, value.valueName, (*fields)[0], "Registry(Value)");
        }
    }
    if (found) return true;
    return WalkDigestIndex(value.md5, [&](const Md5Record& record) {
        Report(location, value.valueName, record.Name, "Registry(Value)");
    });
}

// False when a stop request ended the scan.
bool ScanRunKey(Hive root, FileHelper& files) {
    platform::RegistryHelper reg;
    reg.RootKey(root);
    reg.KeyPath(kRunKey);
    const std::string location = platform::RegistryHelper::HiveName(root) + "\\" + kRunKey;
    for (const std::string& item : reg.EnumerateValueData(root, kRunKey)) {
        if (Stopped()) return false;
        CountItem();
        ui::DoEvents();
        if (!ScanRunValue(ReadRunValue(item, root, files), root, location)) return false;
    }
    return true;
}

// False when a stop request ended the scan.
bool ScanUninstallEntry(const std::string& subkey, const std::string& location) {
    const TextTable& defs = Definitions().AddRemoveDefs;
    for (std::int64_t i = 0; i < defs.Count; ++i) {
        ui::DoEvents();
        if (Stopped()) return false;
        const auto fields = DefinitionLine(defs, i);
        if (fields && SameText((*fields)[1], subkey))
            Report(location, (*fields)[1], (*fields)[0], "Registry(Key)");
    }
    return true;
}

// FileIndex walked in its sorted order, left once the name's first character has passed.
bool ReportListedSharedName(const std::string& fileName, const std::string& path,
                            const std::string& location) {
    if (fileName.empty()) return true;
    const int first = Asc(fileName);
    const auto& index = Definitions().FileIndex;
    const std::int64_t last = std::min<std::int64_t>(Definitions().FileDefs.Count, index.UBound());
    int rowFirst = 0;
    for (std::int64_t i = 0; i <= last; ++i) {
        ui::DoEvents();
        if (Stopped()) return false;
        if (!index.InRange(i)) break;
        const FileRecord& record = index[static_cast<std::size_t>(i)];
        if (!record.FileName.empty()) rowFirst = Asc(LCase(record.FileName.substr(0, 1)));
        if (first < rowFirst) break;
        if (record.FileName == fileName) Report(location, path, record.Name, "Registry(Value)");
    }
    return true;
}

// False when a stop request ended the scan.
bool ScanSharedDll(const std::string& path, const std::string& location) {
    CountItem();
    const std::string fileName = LCase(FileHelper::FilePart(path));
    const std::string md5 = path.empty() ? std::string() : MD5File(path);
    bool found = false;
    const bool finished = WalkDigestIndex(md5, [&](const Md5Record& record) {
        found = true;
        Report(location, path, record.Name, "Registry(Value)");
    });
    if (!finished) return false;
    if (found) return true;
    return ReportListedSharedName(fileName, path, location);
}

}  // namespace

void StartupRegistry() {
    Procedure proc(kModule, "StartupRegistry");
    proc.Run([&] {
        App().StopRequested = VbFalse;
        FileHelper files;
        for (Hive root : {Hive::LocalMachine, Hive::CurrentUser})
            if (!ScanRunKey(root, files)) return;
    });
}

void AddRemoveRegistry() {
    Procedure proc(kModule, "AddRemoveRegistry");
    proc.Run([&] {
        platform::RegistryHelper reg;
        reg.RootKey(Hive::LocalMachine);
        reg.KeyPath(kUninstallKey);
        const std::string location = std::string("HKEY_LOCAL_MACHINE\\") + kUninstallKey;
        for (const std::string& item : reg.EnumerateKeys(Hive::LocalMachine, kUninstallKey)) {
            if (Stopped()) return;
            CountItem();
            const std::string subkey = item.substr(0, item.find('|'));
            if (!subkey.empty() && !ScanUninstallEntry(subkey, location)) return;
        }
    });
}

void SharedDLLRegistry() {
    Procedure proc(kModule, "SharedDLLRegistry");
    proc.Run([&] {
        App().StopRequested = VbFalse;
        platform::RegistryHelper reg;
        reg.RootKey(Hive::LocalMachine);
        reg.KeyPath(kSharedDllsKey);
        const std::string location = std::string("HKEY_LOCAL_MACHINE\\") + kSharedDllsKey;
        for (const std::string& path : reg.EnumerateValues(Hive::LocalMachine, kSharedDllsKey)) {
            if (Stopped()) return;
            if (!ScanSharedDll(path, location)) return;
        }
    });
}

}  // namespace orvex
