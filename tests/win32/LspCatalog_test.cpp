// LspCatalog_test.cpp: the Winsock catalog check and repair on Wine's real registry. Test
// catalogs are planted below the real Parameters key and made the ones in force; the key
// is saved first and put back afterwards.
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "core/AppState.h"
#include "definitions/DefinitionTables.h"
#include "platform/Md5.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "scan/IndexPlanting.h"
#include "scan/Lsp.h"
#include "scan/Recorder.h"
#include "ui/HeadlessHost.h"
#include "win32/SleepingChild.h"

namespace orvex {
namespace {

using platform::Hive;
using platform::RegValue;
namespace regtype = platform::regtype;

const std::string kWinsock = "System\\CurrentControlSet\\Services\\Winsock2";
const std::string kParameters = kWinsock + "\\Parameters";
const std::string kProtocols = kParameters + "\\OrvexTest_Protocols";
const std::string kNameSpaces = kParameters + "\\OrvexTest_NameSpaces";
const std::string kGood = "%SystemRoot%\\system32\\mswsock.dll";
constexpr const char* kPayload = "planted provider";

std::string Entry(int n) {
    return std::string(11, '0') + std::to_string(n);
}

std::string Packed(const std::string& path, int n) {
    return path + std::string(1, '\0') + std::string(8, static_cast<char>(n));
}

class LspCatalogTest : public ::testing::Test {
  protected:
    LspCatalogTest() : host_(platform::MakeHostPlatform()), installed_(host_->view()), ui_(ui) {
        App() = AppState{};
        Definitions() = DefinitionTables{};
        ScumListOfRun().clear();
        App().DataFolder = testing::TempFolder();
        App().AppPath = App().DataFolder + "orvexlsp";
        saved_ = App().DataFolder + "orvexlsp-parameters.sav";
        DeleteFileA(saved_.c_str());
        hadWinsock_ = reg().keyExists(Hive::LocalMachine, kWinsock);
        hadParameters_ = reg().keyExists(Hive::LocalMachine, kParameters);
        if (hadParameters_) {
            EXPECT_TRUE(
                platform::RegistryHelper().SaveKey(Hive::LocalMachine, kParameters, saved_));
        }
    }
    ~LspCatalogTest() override {
        if (hadParameters_)
            platform::RegistryHelper().RestoreKey(saved_, Hive::LocalMachine, kParameters);
        else
            reg().deleteTree(Hive::LocalMachine, hadWinsock_ ? kParameters : kWinsock);
        DeleteFileA(saved_.c_str());
        DeleteFileA(planted_.c_str());
        Definitions() = DefinitionTables{};
        ScumListOfRun().clear();
        App() = AppState{};
    }

    static platform::RegistryBackend& reg() { return platform::Registry(); }

    static void Set(const std::string& key, const RegValue& value) {
        ASSERT_EQ(reg().createKey(Hive::LocalMachine, key), 0);
        ASSERT_EQ(reg().writeValue(Hive::LocalMachine, key, value), 0);
    }
    static std::vector<std::string> SubKeys(const std::string& key) {
        std::vector<platform::RegSubKey> keys;
        reg().listSubKeys(Hive::LocalMachine, key, keys);
        std::vector<std::string> names;
        for (const auto& k : keys)
            names.push_back(k.name);
        return names;
    }
    static std::string Data(const std::string& key, const char* name) {
        RegValue value;
        reg().readValue(Hive::LocalMachine, key, name, value);
        return value.data;
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
    bool hadWinsock_ = false, hadParameters_ = false;
    std::string saved_, planted_;
};

TEST_F(LspCatalogTest, AListedThirdProviderIsTakenOutAndTheCatalogsRenumbered) {
    PlantListedFile("orvexlspbad.dll");
    Set(kParameters, {"Current_Protocol_Catalog", regtype::kSz, "OrvexTest_Protocols"});
    Set(kParameters, {"Current_NameSpace_Catalog", regtype::kSz, "OrvexTest_NameSpaces"});
    for (int n = 1; n <= 5; ++n)
        Set(kProtocols + "\\Catalog_Entries\\" + Entry(n),
            {"PackedCatalogItem", regtype::kBinary,
             Packed(n == 3 ? "%SystemRoot%\\orvexlspbad.dll" : kGood, n)});
    Set(kProtocols, {"Num_Catalog_Entries", regtype::kDword, std::string("\5\0\0\0", 4)});
    const std::string providerId("\0\xff\x7c", 3);
    Set(kNameSpaces + "\\Catalog_Entries\\" + Entry(2), {"LibraryPath", regtype::kSz, kGood});
    Set(kNameSpaces + "\\Catalog_Entries\\" + Entry(2),
        {"ProviderId", regtype::kBinary, providerId});

    EXPECT_EQ(LSPCheck(), VbTrue);
    const std::vector<std::string> four = {Entry(1), Entry(2), Entry(3), Entry(4)};
    ASSERT_EQ(SubKeys(kProtocols + "\\Catalog_Entries"), four);
    const int kept[] = {1, 2, 4, 5};
    for (std::size_t i = 0; i < four.size(); ++i)
        EXPECT_EQ(Data(kProtocols + "\\Catalog_Entries\\" + four[i], "PackedCatalogItem"),
                  Packed(kGood, kept[i]));
    EXPECT_EQ(Data(kProtocols, "Num_Catalog_Entries"), std::string("\4\0\0\0", 4));
    EXPECT_EQ(SubKeys(kNameSpaces + "\\Catalog_Entries"), std::vector<std::string>{Entry(1)});
    EXPECT_EQ(Data(kNameSpaces + "\\Catalog_Entries\\" + Entry(1), "ProviderId"), providerId);
    EXPECT_TRUE(ScumListOfRun().empty());
}

}  // namespace
}  // namespace orvex
