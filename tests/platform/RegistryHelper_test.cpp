// RegistryHelper_test.cpp: selection, deletes and the text forms the scans split.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/RegistryHelper.h"
#include "support/FailureOf.h"
#include "support/MemoryFixture.h"

namespace orvex::platform {
namespace {

using ::testing::ElementsAre;

constexpr Hive kLm = Hive::LocalMachine;
const std::string kEntries = "System\\Catalog9\\Catalog_Entries";

class RegistryHelperTest : public testing::MemoryPlatformTest {
  protected:
    RegistryHelper select(const std::string& path, Hive hive = kLm) {
        RegistryHelper reg;
        reg.RootKey(hive);
        reg.KeyPath(path);
        return reg;
    }
};

TEST_F(RegistryHelperTest, KeyExistsLooksAtTheSubKeyWhileOneIsSet) {
    registry.addKey(kLm, "Software\\A\\Child");
    RegistryHelper reg = select("Software\\A");
    EXPECT_TRUE(reg.KeyExists());
    reg.SubKey("child");
    EXPECT_TRUE(reg.KeyExists());
    reg.SubKey("Missing");
    EXPECT_FALSE(reg.KeyExists());
    reg.SubKey(std::nullopt);
    EXPECT_TRUE(reg.KeyExists());
    reg.KeyPath("Software\\B");
    EXPECT_FALSE(reg.KeyExists());
}

TEST_F(RegistryHelperTest, DeleteKeyWithAnEmptyNameTakesTheSelectedKeyAndItsTree) {
    registry.setString(kLm, kEntries + "\\000000000001\\deep", "v", "x");
    registry.addKey(kLm, kEntries + "\\000000000002");
    RegistryHelper reg = select(kEntries + "\\000000000001");
    EXPECT_EQ(reg.DeleteKey(""), regstatus::kOk);
    EXPECT_THAT(registry.subKeyNames(kLm, kEntries), ElementsAre("000000000002"));
    EXPECT_EQ(reg.DeleteKey(""), regstatus::kNotFound);

    RegistryHelper parent = select(kEntries);
    EXPECT_EQ(parent.DeleteKey("000000000002"), regstatus::kOk);
    EXPECT_TRUE(registry.hasKey(kLm, kEntries));
    EXPECT_TRUE(registry.subKeyNames(kLm, kEntries).empty());

    // With nothing selected, the hive itself stays.
    EXPECT_NE(select("").DeleteKey(""), regstatus::kOk);
    EXPECT_TRUE(registry.hasKey(kLm, "System"));
}

TEST_F(RegistryHelperTest, DeleteValueSaysTwoWhenTheValueIsNotThere) {
    registry.setString(kLm, "Run", "Spy", "spy.exe");
    RegistryHelper reg = select("Run");
    EXPECT_EQ(reg.DeleteValue("SPY"), regstatus::kOk);
    EXPECT_EQ(reg.DeleteValue("Spy"), regstatus::kNotFound);
    EXPECT_EQ(select("NoKey").DeleteValue("Spy"), regstatus::kNotFound);
}

TEST_F(RegistryHelperTest, EnumeratedKeysCarryABarAndTheirLastWrite) {
    registry.setTimestamp("11/22/2026 7:14:05 PM");
    registry.addKey(kLm, "Uninstall\\SpyApp");
    registry.addKey(kLm, "Uninstall\\Good");
    RegistryHelper reg;
    EXPECT_THAT(reg.EnumerateKeys(kLm, "Uninstall"),
                ElementsAre("SpyApp|11/22/2026 7:14:05 PM", "Good|11/22/2026 7:14:05 PM"));
    EXPECT_TRUE(reg.EnumerateKeys(kLm, "Missing").empty());
    EXPECT_TRUE(reg.EnumerateValues(kLm, "Missing").empty());
}

TEST_F(RegistryHelperTest, ValueEnumerationsGiveTheirTextForms) {
    registry.setString(kLm, "K", "Run Me", "\"C:\\a b\\x.exe\" /s");
    registry.setDword(kLm, "K", "Count", 4000000000u);
    registry.setBinary(kLm, "K", "Blob", std::string("\x0c\x00\xff", 3));
    RegistryHelper reg;
    EXPECT_THAT(reg.EnumerateValues(kLm, "K"), ElementsAre("Run Me", "Count", "Blob"));
    EXPECT_THAT(reg.EnumerateValueData(kLm, "K"),
                ElementsAre("\"C:\\a b\\x.exe\" /s|Run Me", "4000000000|Count", "12,0,255,|Blob"));
    EXPECT_THAT(
        reg.EnumerateAllValues(kLm, "K"),
        ElementsAre("Run Me|\"C:\\a b\\x.exe\" /s|1", "Count|4000000000|4", "Blob|12,0,255,|3"));
}

TEST_F(RegistryHelperTest, BinaryTextRoundTripsEveryByteAndNeedsItsFinalComma) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    const std::string text = RegistryHelper::BinaryText(bytes);
    EXPECT_TRUE(text.starts_with("0,1,2,"));
    EXPECT_TRUE(text.ends_with(",255,"));
    EXPECT_EQ(RegistryHelper::BinaryFromText(text), bytes);
    EXPECT_EQ(RegistryHelper::BinaryText(""), "");
    EXPECT_EQ(RegistryHelper::BinaryFromText(""), "");
    // Without its final comma the text loses the last byte; bad numbers give nothing.
    EXPECT_EQ(RegistryHelper::BinaryFromText("12,0,255"), std::string("\x0c\x00", 2));
    EXPECT_EQ(RegistryHelper::BinaryFromText("12"), "");
    EXPECT_EQ(RegistryHelper::BinaryFromText("12,256,"), std::nullopt);
    EXPECT_EQ(RegistryHelper::BinaryFromText("12,,"), std::nullopt);
    EXPECT_EQ(RegistryHelper::BinaryFromText("-1,"), std::nullopt);
    EXPECT_EQ(RegistryHelper::BinaryFromText("x,"), std::nullopt);
}

TEST_F(RegistryHelperTest, GetValueGivesTextsNumbersOrTheDefault) {
    registry.setString(kLm, "K", "s", "text");
    registry.setDword(kLm, "K", "n", 7);
    RegistryHelper reg = select("K");
    EXPECT_EQ(reg.GetValue("S"), "text");
    EXPECT_EQ(reg.GetValue("n"), "7");
    EXPECT_EQ(reg.GetValue("none", "fallback"), "fallback");
    EXPECT_EQ(select("NoKey").GetValue("s", "d"), "d");
}

TEST_F(RegistryHelperTest, APackedCatalogItemReadsAsTextWithThePathAtItsStart) {
    std::string packed = "%SystemRoot%\\system32\\mswsock.dll";
    packed += std::string(8, '\0') + "\x01\x02\xff";
    registry.setBinary(kLm, kEntries + "\\000000000001", "PackedCatalogItem", packed);
    RegistryHelper reg = select(kEntries + "\\000000000001");
    const std::string text = reg.GetValue("PackedCatalogItem", "", true);
    EXPECT_TRUE(text.starts_with("%SystemRoot%\\system32\\mswsock.dll"));
    EXPECT_EQ(reg.GetValue("PackedCatalogItem", "", false), packed);
}

TEST_F(RegistryHelperTest, SetValueCreatesTheKeyAndConvertsNumbersButNotOnADeniedKey) {
    RegistryHelper reg = select("Software\\Norvani\\Orvex Sentry");
    EXPECT_TRUE(reg.SetValue("LastScan", "11/22/2026"));
    EXPECT_TRUE(reg.SetValue("Num_Catalog_Entries", "4", regtype::kDword));
    EXPECT_TRUE(reg.SetValue("Minus", "-1", regtype::kDword));
    EXPECT_TRUE(reg.SetValue("Raw", std::string("\0\1", 2), regtype::kBinary));
    EXPECT_FALSE(reg.SetValue("Bad", "four", regtype::kDword));
    EXPECT_FALSE(reg.SetValue("Big", "4294967296", regtype::kDword));
    const std::string key = "Software\\Norvani\\Orvex Sentry";
    EXPECT_EQ(registry.data(kLm, key, "LastScan"), "11/22/2026");
    EXPECT_EQ(registry.dword(kLm, key, "Num_Catalog_Entries"), 4u);
    EXPECT_EQ(registry.dword(kLm, key, "Minus"), 0xFFFFFFFFu);
    EXPECT_EQ(registry.data(kLm, key, "Raw"), std::string("\0\1", 2));
    EXPECT_FALSE(registry.hasValue(kLm, key, "Bad"));

    registry.addKey(kLm, "Policies");
    registry.denyWrites(kLm, "Policies");
    EXPECT_FALSE(select("Policies").SetValue("x", "1"));
    EXPECT_FALSE(select("Policies\\Sub").SetValue("x", "1"));
}

// The name-space renumbering keeps an entry's values as "name|data|type" items and writes
// them back; every value must come back byte for byte.
TEST_F(RegistryHelperTest, AllValuesItemsRebuildTheEntryExactly) {
    const std::string from = kEntries + "\\000000000003", to = kEntries + "\\000000000001";
    registry.setString(kLm, from, "LibraryPath", "%SystemRoot%\\System32\\mswsock.dll");
    registry.setBinary(kLm, from, "ProviderId", std::string("\x9d\x00\x0a\x7c", 4));
    registry.setDword(kLm, from, "SupportedNameSpace", 12);
    RegistryHelper reg;
    const auto items = reg.EnumerateAllValues(kLm, from);
    RegistryHelper target = select(to);
    for (const auto& item : items) {
        const auto first = item.find('|'), last = item.rfind('|');
        const std::string name = item.substr(0, first);
        const std::string data = item.substr(first + 1, last - first - 1);
        const auto type = static_cast<std::uint32_t>(std::stoul(item.substr(last + 1)));
        const std::string bytes =
            type == regtype::kBinary ? *RegistryHelper::BinaryFromText(data) : data;
        ASSERT_TRUE(target.SetValue(name, bytes, type));
    }
    for (const char* name : {"LibraryPath", "ProviderId", "SupportedNameSpace"}) {
        EXPECT_EQ(registry.value(kLm, to, name)->type, registry.value(kLm, from, name)->type);
        EXPECT_EQ(registry.data(kLm, to, name), registry.data(kLm, from, name)) << name;
    }
}

TEST_F(RegistryHelperTest, ASavedKeyComesBackAsItWas) {
    files.addFolder("C:\\Backup");
    const std::string key = "Software\\Spy";
    const std::string awkward("tab\tcr\rlf\n%25\0end", 17);
    registry.setBinary(kLm, key, "Blob|x", awkward);
    registry.setString(kLm, key + "\\Sub\\Deeper", "", "default value");
    registry.setDword(kLm, key + "\\Sub", "n", 3);
    RegistryHelper reg;
    ASSERT_TRUE(reg.SaveKey(kLm, key, "C:\\Backup\\k1.asw"));
    EXPECT_FALSE(reg.SaveKey(kLm, key, "C:\\Backup\\k1.asw"));  // never overwrites
    EXPECT_FALSE(reg.SaveKey(kLm, "Software\\None", "C:\\Backup\\k2.asw"));
    EXPECT_FALSE(files.fileExists("C:\\Backup\\k2.asw"));

    registry.removeKey(kLm, key);
    ASSERT_TRUE(reg.RestoreKey("C:\\Backup\\k1.asw", kLm, key));
    EXPECT_EQ(registry.data(kLm, key, "Blob|x"), awkward);
    EXPECT_EQ(registry.data(kLm, key + "\\Sub\\Deeper", ""), "default value");
    EXPECT_EQ(registry.dword(kLm, key + "\\Sub", "n"), 3u);
}

TEST_F(RegistryHelperTest, RestoringOverAnExistingKeyReplacesItsContent) {
    files.addFolder("C:\\Backup");
    registry.setString(kLm, "K", "kept", "1");
    RegistryHelper reg;
    ASSERT_TRUE(reg.SaveKey(kLm, "K", "C:\\Backup\\k.asw"));
    registry.setString(kLm, "K", "added", "2");
    registry.addKey(kLm, "K\\NewChild");
    ASSERT_TRUE(reg.RestoreKey("C:\\Backup\\k.asw", kLm, "K"));
    EXPECT_THAT(registry.valueNames(kLm, "K"), ElementsAre("kept"));
    EXPECT_TRUE(registry.subKeyNames(kLm, "K").empty());
}

TEST_F(RegistryHelperTest, ABrokenSaveFileRestoresNothing) {
    files.addFile("C:\\Backup\\bad.asw", "not a saved key\r\n");
    registry.setString(kLm, "K", "v", "1");
    RegistryHelper reg;
    EXPECT_FALSE(reg.RestoreKey("C:\\Backup\\bad.asw", kLm, "K"));
    EXPECT_FALSE(reg.RestoreKey("C:\\Backup\\none.asw", kLm, "K"));
    EXPECT_EQ(registry.data(kLm, "K", "v"), "1");
}

TEST_F(RegistryHelperTest, HiveNamesLeavePerformanceDataNameless) {
    EXPECT_EQ(RegistryHelper::HiveName(Hive::LocalMachine), "HKEY_LOCAL_MACHINE");
    EXPECT_EQ(RegistryHelper::HiveName(Hive::DynData), "HKEY_DYN_DATA");
    EXPECT_EQ(RegistryHelper::HiveName(Hive::PerformanceData), "");
}

TEST(RegistryHelperWithoutPlatform, FailsWithNinetyOne) {
    EXPECT_EQ(testing::FailureOf([] { RegistryHelper reg; }), failure::kObjectNotSet);
}

}  // namespace
}  // namespace orvex::platform
