// ComScan.cpp: COM component places and the module-usage scan.
#include "scan/ComScan.h"

#include <cstdint>
#include <vector>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/FileHelper.h"
#include "platform/RegistryHelper.h"
#include "scan/DigestWalk.h"
#include "scan/FileScan.h"
#include "scan/ScanLogWrite.h"
#include "ui/UiHost.h"

namespace orvex {

using platform::Hive;

std::array<ComKeyRow, kComKeyRows> ComKeyTable{};

namespace {

constexpr const char* kModule = "RegistryModule";
constexpr const char* kModuleUsageKey = "Software\\Microsoft\\Windows\\CurrentVersion\\moduleusage";

bool Stopped() {
    return IsTrue(App().StopRequested);
}

void Report(const std::string& location, const std::string& item, const std::string& threat,
            const char* category) {
    std::int32_t listIndex = 0;
    ScanLogWrite(location, item, "found", threat, category, VbFalse, listIndex);
}

// The text of an enumerated subkey item before its first "|"; the whole item without one.
std::string SubKeyName(const std::string& item) {
    const std::size_t bar = item.find('|');
    return bar == std::string::npos ? item : item.substr(0, bar);
}

// One module-usage entry: the file it names and that file's lower-cased name.
struct ModuleEntry {
    std::string item;
    std::string path;
    std::string name;
};

std::vector<ModuleEntry> ModuleEntries(platform::RegistryHelper& reg) {
    std::vector<ModuleEntry> entries;
    for (std::string& item : reg.EnumerateKeys(Hive::LocalMachine, kModuleUsageKey)) {
        ModuleEntry entry;
        if (item.find('|') != std::string::npos) {
            entry.path = SubKeyName(item);
            entry.name = LCase(ExtractFileNameSpecial(entry.path));
        } else {
            entry.name = item;
        }
        entry.item = std::move(item);
        entries.push_back(std::move(entry));
    }
    return entries;
}

// Every FileIndex record that lists the entry's name; the index is walked whole.
void ReportListedName(const ModuleEntry& entry, const std::string& location) {
    if (entry.name.empty()) return;  // the index's empty first element is no definition
    for (const FileRecord& record : Definitions().FileIndex.Items)
        if (record.FileName == entry.name)
            Report(location, SubKeyName(entry.item), record.Name, "Registry(Key)");
}

// False when a stop request ended the walk.
bool ScanModuleEntry(const ModuleEntry& entry, platform::FileHelper& files) {
    const std::string location = std::string("HKEY_LOCAL_MACHINE\\") + kModuleUsageKey;
    std::string md5;
    if (!entry.path.empty() && files.FileExists(entry.path)) md5 = MD5File(entry.path);
    bool found = false;
    const bool finished = WalkDigestIndex(md5, [&](const Md5Record& record) {
        found = true;
        Report(location, entry.path, record.Name, "Registry(Key)");
    });
    if (!finished) return false;
    if (found) return true;
    ui::DoEvents();
    if (Stopped()) return false;
    ReportListedName(entry, location);
    return true;
}

}  // namespace

void ClsidIntialize() {
    Procedure proc(kModule, "ClsidIntialize");
    proc.Run([&] {
        struct Place {
            Hive root;
            const char* path;
        };
        static const Place kPlaces[kComKeyRows] = {
            {Hive::ClassesRoot, "CLSID"},
            {Hive::ClassesRoot, ""},
            {Hive::ClassesRoot, "interface"},
            {Hive::LocalMachine, "software\\classes"},
            {Hive::LocalMachine, "software\\classes\\interface"},
            {Hive::LocalMachine, "SOFTWARE\\Classes\\CLSID"},
            {Hive::LocalMachine, "SOFTWARE\\Classes\\TypeLib"},
            {Hive::LocalMachine, "software\\classes\\appid"},
            {Hive::LocalMachine, "SOFTWARE"},
            {Hive::CurrentUser, "SOFTWARE"},
            {Hive::ClassesRoot, "Typelib"},
            {Hive::LocalMachine,
             "Software\\Microsoft\\Windows\\CurrentVersion\\explorer\\Browser Helper Objects"},
            {Hive::LocalMachine, "SOFTWARE\\Microsoft\\Code Store Database\\Distribution Units"},
            {Hive::LocalMachine,
             "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Shell Extensions\\Approved"},
            {Hive::LocalMachine, "Software\\Microsoft\\Internet Explorer\\Extensions"},
            {Hive::CurrentUser,
             "Software\\Microsoft\\Windows\\CurrentVersion\\explorer\\Browser Helper Objects"},
            {Hive::LocalMachine, "SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar"},
            {Hive::CurrentUser, "Software\\Microsoft\\Internet Explorer\\Toolbar\\WebBrowser"},
            {Hive::CurrentUser, "Software\\Microsoft\\Internet Explorer\\URLSearchHooks"},
            {Hive::CurrentUser, "Software\\Microsoft\\Internet Explorer\\Explorer Bars"},
            {Hive::CurrentUser, "software\\classes\\appid"},
        };
        for (int i = 0; i < kComKeyRows; ++i)
            ComKeyTable[i] = {kPlaces[i].path, kPlaces[i].root,
                              platform::RegistryHelper::HiveName(kPlaces[i].root)};
    });
}

void CLSIDLocate(std::string& clsid, std::string& threat) {
    Procedure proc(kModule, "CLSIDLocate");
    proc.Run([&] {
        // An empty CLSID would name each place itself.
        if (clsid.empty()) return;
        if (ComKeyTable[0].rootName.empty()) ClsidIntialize();
        platform::RegistryHelper reg;
        for (const ComKeyRow& row : ComKeyTable) {
            reg.RootKey(row.root);
            if (Stopped()) return;
            ui::DoEvents();
            const std::string location = row.rootName + "\\" + row.path + "\\";
            reg.KeyPath(row.path);
            reg.SubKey(clsid);
            const bool keyExists = reg.KeyExists();
            reg.SubKey(std::nullopt);
            if (keyExists) {
                if (!Stopped()) Report(location, clsid, threat, "Registry(Key)");
            } else if (!reg.GetValue(clsid).empty() && !Stopped()) {
                Report(location, clsid, threat, "Registry(Value)");
            }
        }
    });
}

void EnumerateSpecialKeys() {
    Procedure proc(kModule, "EnumerateSpecialKeys");
    proc.Run([&] {
        platform::RegistryHelper reg;
        reg.RootKey(Hive::LocalMachine);
        reg.KeyPath(kModuleUsageKey);
        if (!reg.KeyExists()) return;
        platform::FileHelper files;
        for (const ModuleEntry& entry : ModuleEntries(reg)) {
            if (Stopped()) return;
            if (!ScanModuleEntry(entry, files)) return;
        }
    });
}

std::string ExtractFileNameSpecial(const std::string& text) {
    std::string result;
    Procedure proc(kModule, "ExtractFileNameSpecial");
    proc.Run([&] {
        const std::size_t slash = text.rfind('/');
        if (slash != std::string::npos) {
            result = text.substr(slash + 1);
            return;
        }
        const std::size_t backslash = text.find('\\');
        if (backslash == std::string::npos) {
            result = text;
            return;
        }
        // The text before the backslash less one more character: these names carry a blank
        // before it. A backslash in first place leaves nothing.
        result = backslash >= 1 ? text.substr(0, backslash - 1) : std::string();
    });
    return result;
}

}  // namespace orvex
