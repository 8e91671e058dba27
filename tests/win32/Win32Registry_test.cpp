// Win32Registry_test.cpp: what only the advapi32 back-end shows: the terminators of stored
// texts, the machine's own keys, and a key saved to a file and restored.
#include "platform/win32/Win32Registry.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <regex>
#include <set>

#include "platform/Platform.h"
#include "platform/RegistryHelper.h"

namespace orvex::platform::win32 {
namespace {

constexpr Hive kUser = Hive::CurrentUser;
const std::string kRoot = "Software\\OrvexSentryTest";

std::string Bytes(std::initializer_list<int> values) {
    std::string out;
    for (int v : values)
        out.push_back(static_cast<char>(v));
    return out;
}

class Win32RegistryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        reg.deleteTree(kUser, kRoot);
        ASSERT_EQ(reg.createKey(kUser, key), regstatus::kOk);
    }
    void TearDown() override { reg.deleteTree(kUser, kRoot); }

    // The raw bytes Windows holds for a value, read past the back-end.
    std::string RawData(const std::string& name, DWORD* type = nullptr) {
        HKEY opened = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_QUERY_VALUE, &opened),
                  ERROR_SUCCESS);
        char data[256];
        DWORD size = sizeof data;
        LONG status = RegQueryValueExA(opened, name.c_str(), nullptr, type,
                                       reinterpret_cast<BYTE*>(data), &size);
        RegCloseKey(opened);
        EXPECT_EQ(status, ERROR_SUCCESS);
        return std::string(data, status == ERROR_SUCCESS ? size : 0);
    }

    void WriteRaw(const std::string& name, DWORD type, const std::string& data) {
        HKEY opened = nullptr;
        ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, key.c_str(), 0, KEY_SET_VALUE, &opened),
                  ERROR_SUCCESS);
        EXPECT_EQ(RegSetValueExA(opened, name.c_str(), 0, type,
                                 reinterpret_cast<const BYTE*>(data.data()),
                                 static_cast<DWORD>(data.size())),
                  ERROR_SUCCESS);
        RegCloseKey(opened);
    }

    RegValue Read(const std::string& name) {
        RegValue value;
        EXPECT_EQ(reg.readValue(kUser, key, name, value), regstatus::kOk) << name;
        return value;
    }

    Win32Registry reg;
    std::string key = kRoot + "\\Values";
};

TEST_F(Win32RegistryTest, TextIsStoredWithOneTerminatorAndReadWithoutIt) {
    ASSERT_EQ(reg.writeValue(kUser, key, {"Text", regtype::kSz, "abc"}), regstatus::kOk);
    DWORD type = 0;
    EXPECT_EQ(RawData("Text", &type), std::string("abc\0", 4));
    EXPECT_EQ(type, static_cast<DWORD>(REG_SZ));

    // Other programs store text with extra NULs or with none; only one is taken off.
    WriteRaw("TwoNuls", REG_SZ, std::string("xy\0\0", 4));
    EXPECT_EQ(Read("TwoNuls").data, std::string("xy\0", 3));
    WriteRaw("NoNul", REG_SZ, "xyz");
    EXPECT_EQ(Read("NoNul").data, "xyz");
    WriteRaw("Nothing", REG_SZ, "");
    EXPECT_EQ(Read("Nothing").data, "");
}

TEST_F(Win32RegistryTest, LocalMachineIsReadable) {
    std::vector<RegSubKey> keys;
    ASSERT_EQ(reg.listSubKeys(Hive::LocalMachine, "Software", keys), regstatus::kOk);
    EXPECT_FALSE(keys.empty());
    RegValue value;
    ASSERT_EQ(reg.readValue(Hive::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion",
                            "CurrentVersion", value),
              regstatus::kOk);
    EXPECT_EQ(value.type, regtype::kSz);
    EXPECT_TRUE(std::regex_match(value.data, std::regex(R"(\d+\.\d+)"))) << value.data;
}

class Win32RegistryHelperTest : public Win32RegistryTest {
  protected:
    Win32RegistryHelperTest() : helper(reg) {
        helper.RootKey(kUser);
        helper.KeyPath(key);
    }

    std::set<std::string> Set(const std::vector<std::string>& items) {
        return std::set<std::string>(items.begin(), items.end());
    }

    RegistryHelper helper;
};

TEST_F(Win32RegistryHelperTest, SavedKeyIsRestoredWithEverythingBelowIt) {
    auto host = MakeHostPlatform();
    ScopedPlatform installed(host->view());
    const std::string tree = kRoot + "\\Saved";
    helper.KeyPath(tree + "\\Inner");
    ASSERT_TRUE(helper.SetValue("Text", "inner text"));
    ASSERT_TRUE(helper.SetValue("Blob", Bytes({0, 1, 2, 13, 10}), regtype::kBinary));
    helper.KeyPath(tree);
    ASSERT_TRUE(helper.SetValue("", "default"));

    char temp[MAX_PATH + 1];
    GetTempPathA(sizeof temp, temp);
    const std::string file =
        std::string(temp) + "OrvexSaved" + std::to_string(GetCurrentProcessId()) + ".reg";
    DeleteFileA(file.c_str());
    ASSERT_TRUE(helper.SaveKey(kUser, tree, file));
    ASSERT_EQ(reg.deleteTree(kUser, tree), regstatus::kOk);

    EXPECT_TRUE(helper.RestoreKey(file, kUser, tree));
    DeleteFileA(file.c_str());
    EXPECT_EQ(helper.GetValue(""), "default");
    helper.KeyPath(tree + "\\Inner");
    EXPECT_EQ(helper.GetValue("Text"), "inner text");
    EXPECT_EQ(Set(helper.EnumerateValueData(kUser, tree + "\\Inner")),
              (std::set<std::string>{"inner text|Text", "0,1,2,13,10,|Blob"}));
}

}  // namespace
}  // namespace orvex::platform::win32
