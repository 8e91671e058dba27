// Win32Registry_test.cpp: the advapi32 registry back-end against Wine's real registry.
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

TEST_F(Win32RegistryTest, CreatesMissingParentsAndListsSubKeysWithTheirWriteTime) {
    ASSERT_EQ(reg.createKey(kUser, kRoot + "\\Tree\\Alpha\\Deep"), regstatus::kOk);
    ASSERT_EQ(reg.createKey(kUser, kRoot + "\\Tree\\Beta"), regstatus::kOk);
    EXPECT_TRUE(reg.keyExists(kUser, kRoot + "\\Tree\\Alpha\\Deep"));
    EXPECT_TRUE(reg.keyExists(kUser, kRoot + "\\TREE\\alpha"));  // names ignore case

    std::vector<RegSubKey> keys;
    ASSERT_EQ(reg.listSubKeys(kUser, kRoot + "\\Tree", keys), regstatus::kOk);
    std::set<std::string> names;
    for (const RegSubKey& sub : keys) {
        names.insert(sub.name);
        EXPECT_TRUE(std::regex_match(sub.lastWrite, std::regex(R"(\d\d/\d\d/\d\d \d\d:\d\d:\d\d)")))
            << sub.lastWrite;
    }
    EXPECT_EQ(names, (std::set<std::string>{"Alpha", "Beta"}));
}

TEST_F(Win32RegistryTest, ValuesOfEveryTypeComeBackAsWritten) {
    const std::vector<RegValue> written = {
        {"Text", regtype::kSz, "C:\\Program Files\\x.exe"},
        {"Empty", regtype::kSz, ""},
        {"", regtype::kSz, "default value"},
        {"Expand", regtype::kExpandSz, "%WINDIR%\\system32"},
        {"Binary", regtype::kBinary, Bytes({12, 0, 255, 0})},
        {"Number", regtype::kDword, Bytes({0x78, 0x56, 0x34, 0x12})},
        {"Multi", regtype::kMultiSz, std::string("a\0b\0\0", 5)},
        {"Ansi", regtype::kSz, "caf\xe9 \xa9"},
    };
    for (const RegValue& value : written) {
        ASSERT_EQ(reg.writeValue(kUser, key, value), regstatus::kOk) << value.name;
    }
    for (const RegValue& value : written) {
        RegValue read = Read(value.name);
        EXPECT_EQ(read.type, value.type) << value.name;
        EXPECT_EQ(read.data, value.data) << value.name;
    }
    std::vector<RegValue> listed;
    ASSERT_EQ(reg.listValues(kUser, key, listed), regstatus::kOk);
    ASSERT_EQ(listed.size(), written.size());
    for (const RegValue& value : listed) {
        EXPECT_EQ(value.data, Read(value.name).data) << value.name;
    }
}

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

TEST_F(Win32RegistryTest, LargeValuesAndOddTypesAreReadWhole) {
    std::string big(300000, '\0');
    for (std::size_t i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>(i * 7);
    ASSERT_EQ(reg.writeValue(kUser, key, {"Big", regtype::kBinary, big}), regstatus::kOk);
    EXPECT_EQ(Read("Big").data, big);
    const std::string longText(70000, 'q');
    ASSERT_EQ(reg.writeValue(kUser, key, {"LongText", regtype::kSz, longText}), regstatus::kOk);
    EXPECT_EQ(Read("LongText").data, longText);

    WriteRaw("ShortDword", REG_DWORD, Bytes({1, 2}));
    EXPECT_EQ(Read("ShortDword").data, Bytes({1, 2}));
    WriteRaw("Strange", 0x4711, "raw");
    RegValue strange = Read("Strange");
    EXPECT_EQ(strange.type, 0x4711u);
    EXPECT_EQ(strange.data, "raw");

    std::vector<RegValue> listed;
    ASSERT_EQ(reg.listValues(kUser, key, listed), regstatus::kOk);
    EXPECT_EQ(listed.size(), 4u);
}

TEST_F(Win32RegistryTest, DeleteTreeTakesEverythingBelowAndLeavesTheParent) {
    const std::string tree = kRoot + "\\Doomed";
    ASSERT_EQ(reg.createKey(kUser, tree + "\\A\\B\\C"), regstatus::kOk);
    ASSERT_EQ(reg.createKey(kUser, tree + "\\D"), regstatus::kOk);
    ASSERT_EQ(reg.writeValue(kUser, tree + "\\A\\B", {"v", regtype::kSz, "x"}), regstatus::kOk);
    ASSERT_EQ(reg.writeValue(kUser, tree, {"w", regtype::kSz, "y"}), regstatus::kOk);

    EXPECT_EQ(reg.deleteTree(kUser, tree), regstatus::kOk);
    EXPECT_FALSE(reg.keyExists(kUser, tree));
    EXPECT_TRUE(reg.keyExists(kUser, kRoot));
    EXPECT_EQ(reg.deleteTree(kUser, tree), regstatus::kNotFound);
    // The hive itself is never a tree to delete.
    EXPECT_EQ(reg.deleteTree(kUser, ""), regstatus::kInvalid);
}

TEST_F(Win32RegistryTest, MissingKeysAndValuesReportNotFound) {
    const std::string missing = kRoot + "\\Missing";
    RegValue value;
    std::vector<RegValue> values;
    std::vector<RegSubKey> keys;
    EXPECT_FALSE(reg.keyExists(kUser, missing));
    EXPECT_EQ(reg.readValue(kUser, missing, "x", value), regstatus::kNotFound);
    EXPECT_EQ(reg.listValues(kUser, missing, values), regstatus::kNotFound);
    EXPECT_EQ(reg.listSubKeys(kUser, missing, keys), regstatus::kNotFound);
    EXPECT_EQ(reg.deleteValue(kUser, missing, "x"), regstatus::kNotFound);
    // Writing does not create the key.
    EXPECT_EQ(reg.writeValue(kUser, missing, {"x", regtype::kSz, "y"}), regstatus::kNotFound);
    EXPECT_FALSE(reg.keyExists(kUser, missing));

    EXPECT_EQ(reg.readValue(kUser, key, "absent", value), regstatus::kNotFound);
    EXPECT_EQ(reg.deleteValue(kUser, key, "absent"), regstatus::kNotFound);
    ASSERT_EQ(reg.writeValue(kUser, key, {"gone", regtype::kSz, "soon"}), regstatus::kOk);
    EXPECT_EQ(reg.deleteValue(kUser, key, "gone"), regstatus::kOk);
    EXPECT_EQ(reg.readValue(kUser, key, "gone", value), regstatus::kNotFound);
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

// The text forms the scans split, made from what the real registry holds.
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

TEST_F(Win32RegistryHelperTest, ValueItemsCarryDataNameAndType) {
    ASSERT_TRUE(helper.SetValue("Path", "C:\\spy.exe"));
    ASSERT_TRUE(helper.SetValue("Count", "4294967295", regtype::kDword));
    ASSERT_TRUE(helper.SetValue("Blob", Bytes({12, 0, 255}), regtype::kBinary));

    EXPECT_EQ(
        Set(helper.EnumerateAllValues(kUser, key)),
        (std::set<std::string>{"Path|C:\\spy.exe|1", "Count|4294967295|4", "Blob|12,0,255,|3"}));
    EXPECT_EQ(Set(helper.EnumerateValueData(kUser, key)),
              (std::set<std::string>{"C:\\spy.exe|Path", "4294967295|Count", "12,0,255,|Blob"}));
    EXPECT_EQ(Set(helper.EnumerateValues(kUser, key)),
              (std::set<std::string>{"Path", "Count", "Blob"}));
    EXPECT_EQ(RawData("Count"), Bytes({255, 255, 255, 255}));
    EXPECT_EQ(helper.GetValue("Count"), "4294967295");
    EXPECT_EQ(helper.GetValue("Path"), "C:\\spy.exe");
    EXPECT_EQ(helper.GetValue("Absent", "fallback"), "fallback");
}

TEST_F(Win32RegistryHelperTest, KeyItemsCarryABarAndKeysComeAndGo) {
    helper.KeyPath(kRoot);
    ASSERT_EQ(helper.CreateKey("Run\\One"), regstatus::kOk);
    std::vector<std::string> items = helper.EnumerateKeys(kUser, kRoot);
    ASSERT_EQ(items.size(), 2u);
    for (const std::string& item : items) {
        const std::string name = item.substr(0, item.find('|'));
        EXPECT_TRUE(name == "Run" || name == "Values") << item;
        EXPECT_GT(item.size(), name.size() + 1) << "a last write time follows the bar";
    }
    EXPECT_EQ(helper.DeleteKey("Run"), regstatus::kOk);
    EXPECT_EQ(helper.DeleteKey("Run"), regstatus::kNotFound);
    EXPECT_EQ(helper.EnumerateKeys(kUser, kRoot).size(), 1u);
    EXPECT_TRUE(helper.EnumerateKeys(kUser, kRoot + "\\Missing").empty());
}

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
