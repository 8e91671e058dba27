// RegistryHelper_test.cpp: selection, writes and the text forms the scans split.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/RegistryHelper.h"
#include "support/FailureOf.h"
#include "support/MemoryFixture.h"
#include "support/RegistrySamples.h"

namespace orvex::platform {
namespace {

using ::testing::ElementsAre;

constexpr Hive kLm = Hive::LocalMachine;

class RegistryHelperTest : public testing::MemoryPlatformTest {
  protected:
    RegistryHelper select(const std::string& path) {
        RegistryHelper reg;
        reg.RootKey(kLm);
        reg.KeyPath(path);
        return reg;
    }
};

TEST_F(RegistryHelperTest, TheSelectionIsRead) {
    registry.addKey(kLm, "Software\\A\\Child");
    registry.setString(kLm, "Software\\A", "s", "text");
    registry.setDword(kLm, "Software\\A", "n", 7);
    RegistryHelper reg = select("Software\\A");
    EXPECT_EQ(reg.GetValue("S") + reg.GetValue("n"), "text7");
    EXPECT_EQ(reg.GetValue("none", "fallback"), "fallback");
    EXPECT_EQ(select("NoKey").GetValue("s", "d"), "d");
    // KeyExists looks at the subkey while one is set.
    const std::pair<std::optional<std::string>, bool> subKeys[] = {
        {"child", true}, {"Missing", false}, {std::nullopt, true}};
    for (const auto& [subKey, exists] : subKeys) {
        reg.SubKey(subKey);
        EXPECT_EQ(reg.KeyExists(), exists) << subKey.value_or("none");
    }
    EXPECT_FALSE(select("Software\\B").KeyExists());
}

TEST_F(RegistryHelperTest, EnumerationsAndHiveNamesGiveTheirTextForms) {
    registry.setTimestamp("11/22/2026 7:14:05 PM");
    registry.addKey(kLm, "K\\SpyApp");
    registry.setString(kLm, "K", "Run Me", "\"C:\\a b\\x.exe\" /s");
    registry.setDword(kLm, "K", "Count", 4000000000u);
    registry.setBinary(kLm, "K", "Blob", std::string("\x0c\x00\xff", 3));
    RegistryHelper reg;
    EXPECT_THAT(reg.EnumerateKeys(kLm, "K"), ElementsAre("SpyApp|11/22/2026 7:14:05 PM"));
    EXPECT_THAT(reg.EnumerateValues(kLm, "K"), ElementsAre("Run Me", "Count", "Blob"));
    EXPECT_THAT(reg.EnumerateValueData(kLm, "K"),
                ElementsAre("\"C:\\a b\\x.exe\" /s|Run Me", "4000000000|Count", "12,0,255,|Blob"));
    EXPECT_THAT(
        reg.EnumerateAllValues(kLm, "K"),
        ElementsAre("Run Me|\"C:\\a b\\x.exe\" /s|1", "Count|4000000000|4", "Blob|12,0,255,|3"));
    reg.RootKey(kLm);
    reg.KeyPath("K");
    EXPECT_TRUE(reg.GetValue("Blob", "", true).starts_with("\x0c"));  // bytes read as text
    EXPECT_TRUE(reg.EnumerateKeys(kLm, "Missing").empty() &&
                reg.EnumerateValues(kLm, "Missing").empty());
    // Performance data has no hive name.
    EXPECT_EQ(RegistryHelper::HiveName(Hive::LocalMachine), "HKEY_LOCAL_MACHINE");
    EXPECT_EQ(RegistryHelper::HiveName(Hive::DynData), "HKEY_DYN_DATA");
    EXPECT_EQ(RegistryHelper::HiveName(Hive::PerformanceData), "");
}

TEST_F(RegistryHelperTest, SetValueCreatesTheKeyAndConvertsNumbersButNotOnADeniedKey) {
    const std::string key = "Software\\Norvani\\Orvex Sentry";
    RegistryHelper reg = select(key);
    EXPECT_TRUE(reg.SetValue("LastScan", "11/22/2026"));
    EXPECT_TRUE(reg.SetValue("Num_Catalog_Entries", "4", regtype::kDword));
    EXPECT_TRUE(reg.SetValue("Minus", "-1", regtype::kDword));
    EXPECT_FALSE(reg.SetValue("Bad", "four", regtype::kDword));
    EXPECT_FALSE(reg.SetValue("Big", "4294967296", regtype::kDword));
    EXPECT_EQ(registry.data(kLm, key, "LastScan"), "11/22/2026");
    EXPECT_EQ(registry.dword(kLm, key, "Num_Catalog_Entries"), 4u);
    EXPECT_EQ(registry.dword(kLm, key, "Minus"), 0xFFFFFFFFu);
    EXPECT_FALSE(registry.hasValue(kLm, key, "Bad"));
    registry.addKey(kLm, "Policies");
    registry.denyWrites(kLm, "Policies");
    EXPECT_FALSE(select("Policies").SetValue("x", "1"));
    EXPECT_FALSE(select("Policies\\Sub").SetValue("x", "1"));
}

// A key with everything below it, as "path|name|type|data" lines relative to the key.
std::vector<std::string> Tree(RegistryBackend& reg, const std::string& path,
                              const std::string& relative = "") {
    std::vector<std::string> lines = {relative};
    std::vector<RegValue> values;
    std::vector<RegSubKey> keys;
    reg.listValues(kLm, path, values);
    reg.listSubKeys(kLm, path, keys);
    for (const RegValue& v : values)
        lines.push_back(relative + "|" + v.name + "|" + std::to_string(v.type) + "|" + v.data);
    for (const RegSubKey& k : keys)
        for (auto& line : Tree(reg, path + "\\" + k.name, relative + "\\" + k.name))
            lines.push_back(std::move(line));
    return lines;
}

TEST_F(RegistryHelperTest, ASavedKeyComesBackInPlaceOfWhatIsThere) {
    const std::string spy = "Software\\Spy";
    registry.addKey(kLm, spy + "\\Child\\Empty");
    for (const char* sub : {"", "\\Child\\Grand"}) {
        registry.addKey(kLm, spy + sub);
        for (const RegValue& v : testing::SampleValues())
            registry.writeValue(kLm, spy + sub, v);
    }
    const auto saved = Tree(registry, spy);
    RegistryHelper reg = select(spy);
    files.addFolder("C:\\Backup");
    ASSERT_TRUE(reg.SaveKey(kLm, spy, "C:\\Backup\\1.asw"));
    EXPECT_FALSE(reg.SaveKey(kLm, spy, "C:\\Backup\\1.asw"));  // never overwritten
    EXPECT_FALSE(reg.SaveKey(kLm, "Software\\Missing", "C:\\Backup\\2.asw"));

    const std::pair<std::string, long> deletions[] = {{"Lines", 0}, {"Lines", 2}, {"Nothing", 2}};
    for (const auto& [name, status] : deletions)
        EXPECT_EQ(reg.DeleteValue(name), status) << name;
    EXPECT_EQ(reg.DeleteKey("Child"), regstatus::kOk);
    EXPECT_EQ(reg.DeleteKey("Child"), regstatus::kNotFound);
    registry.setString(kLm, spy + "\\Stray", "planted", "again");
    ASSERT_TRUE(reg.RestoreKey("C:\\Backup\\1.asw", kLm, spy));
    EXPECT_EQ(Tree(registry, spy), saved);
    EXPECT_EQ(reg.DeleteKey(""), regstatus::kOk);
    EXPECT_FALSE(registry.hasKey(kLm, spy));
    // The file's first key goes where it is told, the rest below it.
    ASSERT_TRUE(reg.RestoreKey("C:\\Backup\\1.asw", kLm, "Software\\Moved"));
    EXPECT_EQ(Tree(registry, "Software\\Moved"), saved);
}

TEST_F(RegistryHelperTest, RestoreLeavesTheKeyAloneForAFileItCannotTake) {
    registry.setString(kLm, "K", "kept", "1");
    const std::pair<const char*, std::string> broken[] = {
        {"C:\\missing.asw", ""},
        {"C:\\bad.asw", "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n\"x\"=hex:zz\r\n"},
        {"C:\\empty.asw", "REGEDIT4\r\n"},
        {"C:\\beside.asw", "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n[HKEY_LOCAL_MACHINE\\AB]\r\n"},
        {"C:\\hive.asw", "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\A]\r\n[HKEY_USERS\\A\\B]\r\n"},
    };
    for (const auto& [file, text] : broken) {
        if (!text.empty()) files.addFile(file, text);
        EXPECT_FALSE(select("K").RestoreKey(file, kLm, "K")) << file;
        EXPECT_EQ(registry.data(kLm, "K", "kept"), "1") << file;
    }
}

TEST(RegistryHelperWithoutPlatform, FailsWithNinetyOne) {
    EXPECT_EQ(testing::FailureOf([] { RegistryHelper reg; }), failure::kObjectNotSet);
}

}  // namespace
}  // namespace orvex::platform
