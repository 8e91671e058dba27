// RegistryHelper_test.cpp: selection, writes and the text forms the scans split.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/RegistryHelper.h"
#include "support/FailureOf.h"
#include "support/MemoryFixture.h"

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

TEST(RegistryHelperWithoutPlatform, FailsWithNinetyOne) {
    EXPECT_EQ(testing::FailureOf([] { RegistryHelper reg; }), failure::kObjectNotSet);
}

}  // namespace
}  // namespace orvex::platform
