// LspCatalog_test.cpp: the Winsock catalog check and repair on Wine's real registry. Test
// catalogs are planted below the real Parameters key and made the ones in force; the
// catalog names in force and the keys as they were are put back afterwards.
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/AppState.h"
#include "definitions/DefinitionTables.h"
#include "platform/Md5.h"
#include "platform/Platform.h"
#include "scan/IndexPlanting.h"
#include "scan/Lsp.h"
#include "scan/Recorder.h"
#include "ui/HeadlessHost.h"

namespace orvex {
namespace {

using platform::Hive;
using platform::RegValue;

const std::string kWinsock = "System\\CurrentControlSet\\Services\\Winsock2";
const std::string kParameters = kWinsock + "\\Parameters";
const std::string kProtocols = kParameters + "\\OrvexTest_Protocol_Catalog";
const std::string kNameSpaces = kParameters + "\\OrvexTest_NameSpace_Catalog";
constexpr const char* kPayload = "planted provider";

std::string Entry(int n) {
    return std::string(11, '0') + std::to_string(n);
}

std::string Packed(const std::string& path, int n) {
    return path + std::string(1, '\0') + std::string(8, static_cast<char>(n));
}

// Read straight through the API, not through the back-end under test.
std::vector<std::string> SubKeys(const std::string& path) {
    std::vector<std::string> names;
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return names;
    char name[256];
    for (DWORD i = 0;; ++i) {
        DWORD size = sizeof name;
        if (RegEnumKeyExA(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name, size);
    }
    RegCloseKey(key);
    return names;
}

std::optional<std::string> Data(const std::string& path, const char* name, DWORD wantedType) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return std::nullopt;
    std::string data(4096, '\0');
    DWORD size = static_cast<DWORD>(data.size());
    DWORD type = 0;
    const LONG status =
        RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(data.data()), &size);
    RegCloseKey(key);
    if (status != ERROR_SUCCESS || type != wantedType) return std::nullopt;
    data.resize(size);
    return data;
}

class LspCatalogTest : public ::testing::Test {
  protected:
    LspCatalogTest() : host_(platform::MakeHostPlatform()), installed_(host_->view()), ui_(ui) {
        App() = AppState{};
        Definitions() = DefinitionTables{};
        ScumListOfRun().clear();
        char temp[MAX_PATH + 1] = {};
        GetTempPathA(MAX_PATH, temp);
        App().AppPath = std::string(temp) + "orvexlsp";
        App().DataFolder = std::string(temp);
        hadWinsock_ = registry().keyExists(Hive::LocalMachine, kWinsock);
        hadParameters_ = registry().keyExists(Hive::LocalMachine, kParameters);
        for (const char* name : {"Current_Protocol_Catalog", "Current_NameSpace_Catalog"}) {
            RegValue value;
            if (registry().readValue(Hive::LocalMachine, kParameters, name, value) == 0)
                inForce_.push_back(value);
            else
                inForce_.push_back(RegValue{name, platform::regtype::kNone, "absent"});
        }
    }
    ~LspCatalogTest() override {
        registry().deleteTree(Hive::LocalMachine, kProtocols);
        registry().deleteTree(Hive::LocalMachine, kNameSpaces);
        for (const RegValue& value : inForce_) {
            if (value.data == "absent")
                registry().deleteValue(Hive::LocalMachine, kParameters, value.name);
            else
                registry().writeValue(Hive::LocalMachine, kParameters, value);
        }
        if (!hadParameters_) registry().deleteTree(Hive::LocalMachine, kParameters);
        if (!hadWinsock_) registry().deleteTree(Hive::LocalMachine, kWinsock);
        DeleteFileA(planted_.c_str());
        Definitions() = DefinitionTables{};
        ScumListOfRun().clear();
        App() = AppState{};
    }

    static platform::RegistryBackend& registry() { return platform::Registry(); }

    void Set(const std::string& key, RegValue value) {
        ASSERT_EQ(registry().createKey(Hive::LocalMachine, key), 0);
        ASSERT_EQ(registry().writeValue(Hive::LocalMachine, key, value), 0);
    }

    // A file in the Windows folder whose digest the definitions list.
    void PlantListedFile(const std::string& name) {
        char windows[MAX_PATH + 1] = {};
        ASSERT_GT(GetEnvironmentVariableA("SystemRoot", windows, MAX_PATH), 0u);
        planted_ = std::string(windows) + "\\" + name;
        HANDLE file =
            CreateFileA(planted_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        DWORD written = 0;
        WriteFile(file, kPayload, static_cast<DWORD>(strlen(kPayload)), &written, nullptr);
        CloseHandle(file);
        testing::PlantDigests({{platform::Md5Hex(kPayload), "Planted Threat"}});
    }

    ui::HeadlessHost ui;

  private:
    std::unique_ptr<platform::OwnedPlatform> host_;
    platform::ScopedPlatform installed_;
    ui::ScopedHost ui_;
    bool hadWinsock_ = false;
    bool hadParameters_ = false;
    std::vector<RegValue> inForce_;
    std::string planted_;
};

TEST_F(LspCatalogTest, AListedThirdProviderIsTakenOutAndTheCatalogsRenumbered) {
    PlantListedFile("orvexlspbad.dll");
    const std::string good = "%SystemRoot%\\system32\\mswsock.dll";
    Set(kParameters,
        {"Current_Protocol_Catalog", platform::regtype::kSz, "OrvexTest_Protocol_Catalog"});
    Set(kParameters,
        {"Current_NameSpace_Catalog", platform::regtype::kSz, "OrvexTest_NameSpace_Catalog"});
    for (int n = 1; n <= 5; ++n)
        Set(kProtocols + "\\Catalog_Entries\\" + Entry(n),
            {"PackedCatalogItem", platform::regtype::kBinary,
             Packed(n == 3 ? "%SystemRoot%\\orvexlspbad.dll" : good, n)});
    Set(kProtocols, {"Num_Catalog_Entries", platform::regtype::kDword, std::string("\5\0\0\0", 4)});
    const std::string nameSpace = kNameSpaces + "\\Catalog_Entries\\" + Entry(2);
    Set(nameSpace, {"LibraryPath", platform::regtype::kSz, good});
    Set(nameSpace, {"ProviderId", platform::regtype::kBinary, std::string("\0\xff\x7c", 3)});

    EXPECT_EQ(LSPCheck(), VbTrue);
    const std::vector<std::string> four = {Entry(1), Entry(2), Entry(3), Entry(4)};
    EXPECT_EQ(SubKeys(kProtocols + "\\Catalog_Entries"), four);
    const int kept[] = {1, 2, 4, 5};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(Data(kProtocols + "\\Catalog_Entries\\" + four[static_cast<std::size_t>(i)],
                       "PackedCatalogItem", REG_BINARY),
                  Packed(good, kept[i]));
    EXPECT_EQ(Data(kProtocols, "Num_Catalog_Entries", REG_DWORD), std::string("\4\0\0\0", 4));
    const std::string renamed = kNameSpaces + "\\Catalog_Entries\\" + Entry(1);
    EXPECT_EQ(SubKeys(kNameSpaces + "\\Catalog_Entries"), std::vector<std::string>{Entry(1)});
    EXPECT_EQ(Data(renamed, "LibraryPath", REG_SZ), good + '\0');
    EXPECT_EQ(Data(renamed, "ProviderId", REG_BINARY), std::string("\0\xff\x7c", 3));
    EXPECT_TRUE(ScumListOfRun().empty());
}

}  // namespace
}  // namespace orvex
