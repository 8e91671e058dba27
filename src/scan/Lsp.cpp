// Lsp.cpp: the Winsock catalog reader, the provider check and the catalog repair.
#include "scan/Lsp.h"

#include <optional>

#include "core/Convert.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "scan/FileScan.h"
#include "scan/ScanLogWrite.h"
#include "stores/AllowedItems.h"

namespace orvex {
namespace {

using platform::FileHelper;
using platform::Hive;
using platform::RegistryHelper;

constexpr const char* kModule = "LSP";
constexpr const char* kParameters = "System\\CurrentControlSet\\Services\\Winsock2\\Parameters";
constexpr const char* kCurrentProtocol = "Current_Protocol_Catalog";
constexpr const char* kCurrentNameSpace = "Current_NameSpace_Catalog";
constexpr const char* kPackedCatalogItem = "PackedCatalogItem";
constexpr const char* kLibraryPath = "LibraryPath";
constexpr const char* kEntryCount = "Num_Catalog_Entries";
constexpr int kEntryNameWidth = 12;

// One of the two catalogs: where the name of the one in force is kept, and how its entries
// name their provider.
struct Catalog {
    const char* currentValue;
    const char* pathValue;
};
constexpr Catalog kProtocols{kCurrentProtocol, kPackedCatalogItem};
constexpr Catalog kNameSpaces{kCurrentNameSpace, kLibraryPath};

std::string BeforeBar(const std::string& item) {
    return item.substr(0, item.find('|'));
}

// A helper on HKEY_LOCAL_MACHINE with the Parameters key selected.
RegistryHelper ParametersHelper() {
    RegistryHelper reg;
    reg.RootKey(Hive::LocalMachine);
    reg.SubKey(std::nullopt);
    reg.KeyPath(kParameters);
    return reg;
}

std::string CatalogKey(RegistryHelper& reg, const Catalog& catalog) {
    reg.KeyPath(kParameters);
    return std::string(kParameters) + "\\" + reg.GetValue(catalog.currentValue);
}

std::string EntriesKey(const std::string& catalogKey) {
    return catalogKey + "\\Catalog_Entries";
}

std::vector<std::string> EntryNames(RegistryHelper& reg, const std::string& entriesKey) {
    std::vector<std::string> names;
    for (const std::string& item : reg.EnumerateKeys(Hive::LocalMachine, entriesKey))
        names.push_back(BeforeBar(item));
    return names;
}

void ReadProviders(const char* procedure, const Catalog& catalog, ProviderTable& table) {
    Procedure proc(kModule, procedure);
    proc.Run([&] {
        RegistryHelper reg = ParametersHelper();
        const std::string entries = EntriesKey(CatalogKey(reg, catalog));
        const std::vector<std::string> names = EntryNames(reg, entries);
        table.ReDim(static_cast<std::int32_t>(names.size()));
        for (std::size_t i = 0; i < names.size(); ++i) {
            reg.KeyPath(entries + "\\" + names[i]);
            table[static_cast<std::int32_t>(i + 1)] =
                names[i] + "|" + GetRealPath(reg.GetValue(catalog.pathValue, "", true));
        }
    });
}

// The text behind the first "=" of the first environment string that holds `variable`
// anywhere, ignoring case; empty when none does.
std::string EnvironmentValue(const std::string& variable) {
    for (const std::string& entry : platform::Sys().environmentStrings()) {
        if (entry.empty()) break;
        if (InStr(entry, variable, Compare::Text) > 0) return Mid(entry, InStr(entry, "=") + 1);
    }
    return {};
}

std::string ExpandLeadingVariable(std::string text) {
    text = Mid(text, 2);
    const std::int64_t close = InStr(text, "%");
    const std::string variable = close >= 2 ? Left(text, close - 1) : std::string();
    return Replace(text, variable + "%", EnvironmentValue(variable));
}

bool AllowedProvider(const std::string& fileName, const std::string& folder) {
    bool allowed = false;
    for (const ExclusionRecord& record : ExclusionRecords())
        if (record.ItemLocation == folder && LCase(record.ItemName) == fileName) allowed = true;
    return allowed;
}

// Whether the provider of an "entry|path" item is a recognised threat. The protocol
// catalog's hits add no row (`testOnly`); a name-space hit is reported as a file as well.
bool BadProvider(const std::string& item, VbBool testOnly, const char* logLabel) {
    const std::vector<std::string> fields = Split(item, "|");
    if (fields.size() < 2) Raise(failure::kSubscript);
    const std::string& path = fields[1];
    FileHelper files;
    if (!files.FileExists(path)) return false;
    const std::string fileName = LCase(FileHelper::FilePart(path));
    const std::string folder = LCase(FileHelper::FolderPart(path));
    if (!fileName.empty() && AllowedProvider(fileName, folder)) return false;
    if (!IsTrue(ScumFile(fileName, folder, testOnly))) return false;
    std::int32_t listIndex = 1;
    ScanLogWrite(folder, logLabel + fileName, "LSP", "NewDotNet", kKindRegistryKey, VbTrue,
                 listIndex);
    return true;
}

std::vector<bool> BadProviders(const ProviderTable& table, VbBool testOnly, const char* logLabel) {
    std::vector<bool> bad(static_cast<std::size_t>(table.Count()) + 1, false);
    for (std::int32_t i = 1; i <= table.Count(); ++i)
        bad[static_cast<std::size_t>(i)] = BadProvider(table[i], testOnly, logLabel);
    return bad;
}

bool AnyBad(const std::vector<bool>& flags) {
    for (bool flag : flags)
        if (flag) return true;
    return false;
}

void DeleteEntry(const char* procedure, const Catalog& catalog, const std::string& entry,
                 const char* logLabel) {
    Procedure proc(kModule, procedure);
    proc.Run([&] {
        RegistryHelper reg = ParametersHelper();
        reg.KeyPath(EntriesKey(CatalogKey(reg, catalog)));
        // A key that is already gone is logged all the same.
        reg.DeleteKey(entry);
        std::int32_t listIndex = 1;
        // "Delete" matches no action word of the log, so nothing is written; kept as it is.
        ScanLogWrite(reg.KeyPath(), logLabel + entry, "Delete", "", kKindRegistryKey, VbTrue,
                     listIndex);
    });
}

// "000000000001" for 1.
std::string EntryName(std::size_t number) {
    return FileHelper::Pad(std::to_string(number), kEntryNameWidth, "RIGHT", "0");
}

// Creates the entry key below the selected Catalog_Entries unless it is there already.
void MakeEntryKey(RegistryHelper& reg, const std::string& name) {
    reg.SubKey(name);
    if (!reg.KeyExists()) reg.CreateKey(name);
    reg.SubKey(std::nullopt);
}

// Num_Catalog_Entries from a fresh count of the entries, not from the renumbering.
void WriteEntryCount(RegistryHelper& reg, const std::string& catalogKey) {
    const std::size_t count = reg.EnumerateKeys(Hive::LocalMachine, EntriesKey(catalogKey)).size();
    reg.KeyPath(catalogKey);
    reg.SetValue(kEntryCount, std::to_string(count), platform::regtype::kDword);
}

// The bytes of a "12,0,255," text: one byte per ",", so a text without its final ","
// loses its last byte.
std::string BinaryFromText(const std::string& data) {
    const std::optional<std::string> bytes = RegistryHelper::BinaryFromText(data);
    if (!bytes) Raise(failure::kTypeMismatch);
    return *bytes;
}

// Writes one "name|data|type" item of the value enumeration into the selected key.
void WriteValueItem(RegistryHelper& reg, const std::string& item) {
    const std::vector<std::string> fields = Split(item, "|");
    if (fields.size() < 3) Raise(failure::kSubscript);
    const auto type = static_cast<std::uint32_t>(CLng(fields[2]));
    if (type == platform::regtype::kBinary)
        reg.SetValue(fields[0], BinaryFromText(fields[1]), type);
    else
        reg.SetValue(fields[0], fields[1], type);
}

}  // namespace

const std::string& ProviderTable::operator[](std::int32_t index) const {
    if (index < 1 || index > Count()) Raise(failure::kSubscript);
    return entries_[static_cast<std::size_t>(index - 1)];
}

std::string& ProviderTable::operator[](std::int32_t index) {
    if (index < 1 || index > Count()) Raise(failure::kSubscript);
    return entries_[static_cast<std::size_t>(index - 1)];
}

ProviderTable& ProtocolProviders() {
    static ProviderTable table;
    return table;
}

ProviderTable& NameSpaceProviders() {
    static ProviderTable table;
    return table;
}

void GetProtocalProviders() {
    ReadProviders("GetProtocalProviders", kProtocols, ProtocolProviders());
}

void GetNamespaceProviders() {
    ReadProviders("GetNamespaceProviders", kNameSpaces, NameSpaceProviders());
}

std::string GetRealPath(std::string text) {
    std::string path;
    Procedure proc(kModule, "GetRealPath");
    proc.Run([&] {
        // Up to a three-letter extension, dropping the binary tail of a packed item. A dot
        // in a folder name cuts short; that is how the catalog has always been read.
        const std::int64_t dot = InStr(text, ".", Compare::Text);
        if (dot == 0) Raise(failure::kInvalidCall);
        text = Left(text, dot + 3);
        if (Left(text, 1) == "%") text = ExpandLeadingVariable(text);
        if (InStr(text, "~") > 0) {
            // A short name that no longer resolves stays as it is.
            const std::string longName = FileHelper().LongName(text);
            if (!longName.empty()) text = longName;
        }
        path = text;
    });
    return path;
}

VbBool LSPCheck() {
    bool repaired = false;
    Procedure proc(kModule, "LSPCheck");
    proc.Run([&] {
        GetNamespaceProviders();
        GetProtocalProviders();
        const ProviderTable& protocols = ProtocolProviders();
        const ProviderTable& nameSpaces = NameSpaceProviders();
        const std::vector<bool> badProtocols =
            BadProviders(protocols, VbTrue, "ProtocalProvider: ");
        const std::vector<bool> badNameSpaces = BadProviders(nameSpaces, VbFalse, "NameSpace: ");
        if (!AnyBad(badProtocols) && !AnyBad(badNameSpaces)) return;
        for (std::int32_t i = 1; i <= protocols.Count(); ++i)
            if (badProtocols[static_cast<std::size_t>(i)]) DeleteProtocal(BeforeBar(protocols[i]));
        for (std::int32_t i = 1; i <= nameSpaces.Count(); ++i)
            if (badNameSpaces[static_cast<std::size_t>(i)])
                DeleteNameSpace(BeforeBar(nameSpaces[i]));
        ReOrderNameSpace();
        ReOrderProtocal();
        repaired = true;
    });
    return ToVb(repaired);
}

void DeleteProtocal(const std::string& entry) {
    DeleteEntry("DeleteProtocal", kProtocols, entry, "Protocal Delete: ");
}

void DeleteNameSpace(const std::string& entry) {
    DeleteEntry("DeleteNameSpace", kNameSpaces, entry, "NameSpace Delete: ");
}

void ReOrderProtocal() {
    Procedure proc(kModule, "ReOrderProtocal");
    proc.Run([&] {
        RegistryHelper reg = ParametersHelper();
        const std::string catalogKey = CatalogKey(reg, kProtocols);
        const std::string entries = EntriesKey(catalogKey);
        // From here until the rewrite the catalog lives only in this array: no rollback.
        std::vector<std::string> packed;
        for (const std::string& name : EntryNames(reg, entries)) {
            reg.KeyPath(entries + "\\" + name);
            packed.push_back(reg.GetValue(kPackedCatalogItem, "", false));
            reg.DeleteKey("");
        }
        for (std::size_t i = 1; i <= packed.size(); ++i) {
            const std::string name = EntryName(i);
            reg.KeyPath(entries);
            MakeEntryKey(reg, name);
            reg.KeyPath(entries + "\\" + name);
            reg.SetValue(kPackedCatalogItem, packed[i - 1], platform::regtype::kBinary);
        }
        reg.KeyPath(entries);
        WriteEntryCount(reg, catalogKey);
    });
}

void ReOrderNameSpace() {
    Procedure proc(kModule, "ReOrderNameSpace");
    proc.Run([&] {
        RegistryHelper reg = ParametersHelper();
        const std::string catalogKey = CatalogKey(reg, kNameSpaces);
        const std::string entries = EntriesKey(catalogKey);
        std::vector<std::vector<std::string>> kept;
        for (const std::string& name : EntryNames(reg, entries)) {
            const std::string key = entries + "\\" + name;
            reg.KeyPath(key);
            kept.push_back(reg.EnumerateAllValues(Hive::LocalMachine, key));
            reg.DeleteKey("");
        }
        for (std::size_t i = 1; i <= kept.size(); ++i) {
            const std::string name = EntryName(i);
            reg.KeyPath(entries);
            MakeEntryKey(reg, name);
            reg.KeyPath(entries + "\\" + name);
            for (const std::string& item : kept[i - 1])
                WriteValueItem(reg, item);
        }
        reg.SubKey(std::nullopt);
        WriteEntryCount(reg, catalogKey);
    });
}

}  // namespace orvex
