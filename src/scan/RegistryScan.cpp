// RegistryScan.cpp: the registry stage of a scan: the special registry scans in their
// order, the CLSID table and the registry table tested line by line.
#include "scan/RegistryScan.h"

#include <array>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/FileHelper.h"
#include "platform/RegistryHelper.h"
#include "scan/ComScan.h"
#include "scan/NetworkScan.h"
#include "scan/Recorder.h"
#include "scan/ScanLogWrite.h"
#include "scan/ScanProgress.h"
#include "scan/StartupScan.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

struct RootName {
    const char* name;
    std::uint32_t handle;
    bool writtenInFindings;
};

// HKEY_PERFORMANCE_DATA is read from definitions but has no name in findings, so a key
// test on it finds nothing.
constexpr std::array<RootName, 7> kRoots{{
    {"HKEY_CLASSES_ROOT", 0x80000000u, true},
    {"HKEY_CURRENT_USER", 0x80000001u, true},
    {"HKEY_LOCAL_MACHINE", 0x80000002u, true},
    {"HKEY_USERS", 0x80000003u, true},
    {"HKEY_PERFORMANCE_DATA", 0x80000004u, false},
    {"HKEY_CURRENT_CONFIG", 0x80000005u, true},
    {"HKEY_DYN_DATA", 0x80000006u, true},
}};

bool Stopped() {
    return IsTrue(App().StopRequested);
}

void ShowProgress(int message) {
    TheScanProgress().ItemsScanned(Lng(message), App().ItemsScanned);
}

void RunSpecialScans() {
    for (void (*scan)() : {SpecialRegDomainHijack, EnumerateSpecialKeys, StartupRegistry,
                           AddRemoveRegistry, SharedDLLRegistry, ClsidIntialize}) {
        if (Stopped()) return;
        scan();
    }
}

// False when a stop was requested.
bool WalkClsidDefs() {
    const TextTable& defs = Definitions().ClsidDefs;
    for (std::size_t i = 0; i < defs.size(); ++i) {
        ++App().ItemsScanned;
        if (Stopped()) return false;
        ShowProgress(376);
        if (!defs[i].empty()) {
            std::vector<std::string> fields = Split(defs[i], "|");
            if (fields.size() > 1 && !fields[1].empty()) CLSIDLocate(fields[1], fields[0]);
        }
        ui::DoEvents();
    }
    return true;
}

void WalkRegistryDefs() {
    const TextTable& defs = Definitions().RegistryDefs;
    // The first line is never tested.
    std::uint32_t handle = 0;
    for (std::size_t i = 1; i < defs.size(); ++i) {
        ++App().ItemsScanned;
        if (Stopped()) return;
        ShowProgress(379);
        ui::DoEvents();
        ui::DoEvents();
        if (defs[i].empty()) continue;
        const std::vector<std::string> fields = Split(defs[i], "|");
        // A root name that is none of the table's keeps the handle of the line before.
        if (fields.size() > 1) {
            if (const std::uint32_t named = RootHandleFromName(fields[1]); named != 0)
                handle = named;
        }
        ui::DoEvents();
        const std::string key = fields.size() > 2 ? fields[2] : std::string();
        // Exactly four fields is a value test, any other count a key test.
        if (Occurs(defs[i], "|") == 4)
            RegistryCheck(handle, key, fields[3], fields[0]);
        else
            RegistryCheck(handle, key, "", fields[0]);
    }
}

void ValueTest(platform::RegistryHelper& helper, const std::string& rootName,
               const std::string& key, const std::string& text, const std::string& threat) {
    for (const std::string& valueName : helper.EnumerateValues(helper.RootKey(), key)) {
        const std::string data = helper.GetValue(valueName);
        if (InStr(data, text, Compare::Text) == 0 && InStr(valueName, text, Compare::Text) == 0)
            continue;
        std::int32_t listIndex = 0;
        ScanLogWrite(rootName + "\\" + key + "|" + valueName, text, "found", threat,
                     "Registry(Value)", VbFalse, listIndex);
    }
}

void KeyTest(platform::RegistryHelper& helper, const std::string& rootName, const std::string& key,
             const std::string& threat) {
    if (!helper.KeyExists()) return;
    const std::string parent = platform::FileHelper::FolderPart(key);
    // The text behind the last backslash; a key without one fails here (failure 5).
    const std::string reversed(key.rbegin(), key.rend());
    const std::string lastReversed = Left(reversed, InStr(reversed, "\\") - 1);
    const std::string last(lastReversed.rbegin(), lastReversed.rend());
    std::int32_t listIndex = 0;
    ScanLogWrite(rootName + "\\" + parent, last, "found", threat, "Registry(Key)", VbFalse,
                 listIndex);
}

}  // namespace

std::uint32_t RootHandleFromName(const std::string& name) {
    for (const RootName& root : kRoots) {
        if (name == root.name) return root.handle;
    }
    return 0;
}

std::string RootNameFromHandle(std::uint32_t handle) {
    for (const RootName& root : kRoots) {
        if (handle == root.handle && root.writtenInFindings) return root.name;
    }
    return {};
}

void ScumRegistry() {
    Procedure proc("Module1", "ScumRegistry");
    proc.Run([&] {
        App().StopRequested = VbFalse;
        std::int32_t listIndex = 0;
        proc.Step([&] { ScanLogWrite("", "", "Start R", "", "", VbTrue, listIndex); });
        proc.Step([&] { RunSpecialScans(); });
        if (!Stopped()) {
            bool completed = true;
            proc.Step([&] { completed = WalkClsidDefs(); });
            if (!completed) return;
        }
        // With an empty key this finds nothing; it keeps its place in the sequence.
        if (!Stopped()) RegistryCheck(0x80000000u, "", "", "TSADBOT");
        WalkRegistryDefs();
    });
}

void RegistryCheck(std::uint32_t rootHandle, const std::string& key, const std::string& text,
                   const std::string& threat) {
    Procedure proc("RegistryModule", "RegistryCheck");
    proc.Run([&] {
        platform::RegistryHelper helper;
        helper.SubKey(std::nullopt);
        helper.RootKey(static_cast<platform::Hive>(rootHandle));
        helper.KeyPath(key);
        const std::string rootName = RootNameFromHandle(rootHandle);
        if (!text.empty())
            ValueTest(helper, rootName, key, text, threat);
        else if (!rootName.empty() && !key.empty())
            KeyTest(helper, rootName, key, threat);
    });
}

std::string removeChr34(const std::string& text) {
    std::string result = text;
    Procedure proc("RegistryModule", "removeChr34");
    proc.Run([&] {
        if (result.size() <= 1) return;
        if (result.front() == '"') result.erase(0, 1);
        if (!result.empty() && result.back() == '"') result.pop_back();
    });
    return result;
}

}  // namespace orvex
