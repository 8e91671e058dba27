// Win32Registry_test.cpp: what only the advapi32 back-end shows: the terminators of stored
// texts, the machine's own keys, and a key saved to a file and restored.
#include "platform/win32/Win32Registry.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <regex>

#include "platform/Platform.h"
#include "platform/RegistryHelper.h"

namespace orvex::platform::win32 {
namespace {

constexpr Hive kUser = Hive::CurrentUser;
const std::string kRoot = "Software\\OrvexSentryTest";

class Win32RegistryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        reg.deleteTree(kUser, kRoot);
        ASSERT_EQ(reg.createKey(kUser, kRoot), regstatus::kOk);
    }
    void TearDown() override { reg.deleteTree(kUser, kRoot); }

    // The raw bytes and type Windows holds for a value, past the back-end; written first
    // when a type is given.
    std::pair<std::string, DWORD> raw(const std::string& name, DWORD type = 0,
                                      const std::string& data = "") {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kRoot.c_str(), 0, KEY_ALL_ACCESS, &key),
                  ERROR_SUCCESS);
        if (type != 0)
            RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(data.data()),
                           static_cast<DWORD>(data.size()));
        char bytes[256];
        DWORD size = sizeof bytes;
        const LONG status = RegQueryValueExA(key, name.c_str(), nullptr, &type,
                                             reinterpret_cast<BYTE*>(bytes), &size);
        RegCloseKey(key);
        return {std::string(bytes, status == ERROR_SUCCESS ? size : 0), type};
    }
    std::string read(const std::string& name) {
        RegValue value;
        EXPECT_EQ(reg.readValue(kUser, kRoot, name, value), regstatus::kOk) << name;
        return value.data;
    }

    Win32Registry reg;
};

TEST_F(Win32RegistryTest, TextIsStoredWithOneTerminatorAndReadWithoutIt) {
    ASSERT_EQ(reg.writeValue(kUser, kRoot, {"Text", regtype::kSz, "abc"}), regstatus::kOk);
    EXPECT_EQ(raw("Text"), std::pair(std::string("abc\0", 4), DWORD{REG_SZ}));
    // Other programs store text with extra NULs or with none; only one is taken off.
    const std::pair<std::string, std::string> stored[] = {
        {std::string("xy\0\0", 4), std::string("xy\0", 3)}, {"xyz", "xyz"}, {"", ""}};
    for (const auto& [bytes, text] : stored) {
        raw("Other", REG_SZ, bytes);
        EXPECT_EQ(read("Other"), text);
    }
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

TEST_F(Win32RegistryTest, ASavedKeyIsRestoredWithEverythingBelowIt) {
    auto host = MakeHostPlatform();
    ScopedPlatform installed(host->view());
    RegistryHelper helper(reg);
    helper.RootKey(kUser);
    const std::string tree = kRoot + "\\Saved";
    helper.KeyPath(tree + "\\Inner");
    ASSERT_TRUE(helper.SetValue("Text", "inner text"));
    ASSERT_TRUE(helper.SetValue("Blob", std::string("\0\1\2\r\n", 5), regtype::kBinary));
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
    auto items = helper.EnumerateValueData(kUser, tree + "\\Inner");
    std::sort(items.begin(), items.end());
    EXPECT_EQ(items, (std::vector<std::string>{"0,1,2,13,10,|Blob", "inner text|Text"}));
}

}  // namespace
}  // namespace orvex::platform::win32
