// MemoryRegistry_test.cpp: the in-memory registry keeps Windows's rules for names, order,
// deletes and status codes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform::memory {
namespace {

using ::testing::ElementsAre;

constexpr Hive kLm = Hive::LocalMachine;

TEST(MemoryRegistry, NamesIgnoreCaseButKeepTheSpellingTheyWereCreatedWith) {
    MemoryRegistry reg;
    reg.setString(kLm, "Software\\Norvani", "DataPath", "C:\\Data");
    EXPECT_TRUE(reg.keyExists(kLm, "SOFTWARE\\norvani"));
    EXPECT_EQ(reg.data(kLm, "software\\NORVANI", "datapath"), "C:\\Data");

    ASSERT_EQ(reg.writeValue(kLm, "software\\norvani", RegValue{"DATAPATH", regtype::kSz, "D:"}),
              regstatus::kOk);
    EXPECT_THAT(reg.valueNames(kLm, "Software\\Norvani"), ElementsAre("DataPath"));
    EXPECT_EQ(reg.data(kLm, "Software\\Norvani", "DataPath"), "D:");
    EXPECT_THAT(reg.subKeyNames(kLm, "software"), ElementsAre("Norvani"));
}

TEST(MemoryRegistry, EnumeratesInCreationOrder) {
    MemoryRegistry reg;
    for (const char* name : {"b", "a", "C"})
        reg.addKey(kLm, std::string("K\\") + name);
    reg.setString(kLm, "K", "zeta", "1");
    reg.setString(kLm, "K", "Alpha", "2");
    std::vector<RegSubKey> keys;
    std::vector<RegValue> values;
    ASSERT_EQ(reg.listSubKeys(kLm, "K", keys), regstatus::kOk);
    ASSERT_EQ(reg.listValues(kLm, "K", values), regstatus::kOk);
    ASSERT_EQ(keys.size(), 3u);
    EXPECT_EQ(keys[0].name + keys[1].name + keys[2].name, "baC");
    EXPECT_EQ(values[0].name, "zeta");
    EXPECT_EQ(values[1].name, "Alpha");
}

TEST(MemoryRegistry, HivesAreSeparateTrees) {
    MemoryRegistry reg;
    reg.addKey(Hive::CurrentUser, "Software\\x");
    EXPECT_FALSE(reg.keyExists(kLm, "Software\\x"));
    EXPECT_TRUE(reg.keyExists(Hive::CurrentUser, "Software\\x"));
    EXPECT_FALSE(reg.keyExists(static_cast<Hive>(0x12345678u), ""));
}

TEST(MemoryRegistry, DeleteTreeTakesEverythingBelowAndOnlyThat) {
    MemoryRegistry reg;
    reg.setString(kLm, "A\\B\\C\\D", "v", "1");
    reg.addKey(kLm, "A\\Sibling");
    EXPECT_EQ(reg.deleteTree(kLm, "a\\b"), regstatus::kOk);
    EXPECT_FALSE(reg.keyExists(kLm, "A\\B\\C\\D"));
    EXPECT_FALSE(reg.keyExists(kLm, "A\\B"));
    EXPECT_TRUE(reg.keyExists(kLm, "A\\Sibling"));
    EXPECT_EQ(reg.deleteTree(kLm, "A\\B"), regstatus::kNotFound);
    EXPECT_EQ(reg.deleteTree(kLm, ""), regstatus::kAccessDenied);
    EXPECT_TRUE(reg.keyExists(kLm, "A"));
}

TEST(MemoryRegistry, MissingThingsAnswerTwo) {
    MemoryRegistry reg;
    RegValue out;
    std::vector<RegSubKey> keys{{"stale", ""}};
    EXPECT_EQ(reg.readValue(kLm, "Nope", "v", out), regstatus::kNotFound);
    EXPECT_EQ(reg.writeValue(kLm, "Nope", RegValue{"v", regtype::kSz, "x"}), regstatus::kNotFound);
    EXPECT_EQ(reg.deleteValue(kLm, "Nope", "v"), regstatus::kNotFound);
    EXPECT_EQ(reg.listSubKeys(kLm, "Nope", keys), regstatus::kNotFound);
    EXPECT_TRUE(keys.empty());
    reg.addKey(kLm, "Yes");
    EXPECT_EQ(reg.deleteValue(kLm, "Yes", "v"), regstatus::kNotFound);
}

TEST(MemoryRegistry, PathsToleratesOneClosingBackslashButNoEmptyParts) {
    MemoryRegistry reg;
    EXPECT_EQ(reg.createKey(kLm, "A\\B\\"), regstatus::kOk);
    EXPECT_TRUE(reg.keyExists(kLm, "A\\B"));
    EXPECT_EQ(reg.createKey(kLm, "A\\\\C"), regstatus::kInvalid);
    EXPECT_FALSE(reg.keyExists(kLm, "\\A"));
    EXPECT_THAT(reg.subKeyNames(kLm, "A"), ElementsAre("B"));
}

TEST(MemoryRegistry, DeniedKeysRefuseChangesWithStatusFive) {
    MemoryRegistry reg;
    reg.setString(kLm, "Locked\\Inner", "v", "1");
    reg.denyWrites(kLm, "Locked\\Inner");
    EXPECT_EQ(reg.writeValue(kLm, "Locked\\Inner", RegValue{"w", regtype::kSz, "2"}),
              regstatus::kAccessDenied);
    EXPECT_EQ(reg.deleteValue(kLm, "Locked\\Inner", "v"), regstatus::kAccessDenied);
    EXPECT_EQ(reg.createKey(kLm, "Locked\\Inner\\New"), regstatus::kAccessDenied);
    EXPECT_EQ(reg.deleteTree(kLm, "Locked"), regstatus::kAccessDenied);
    EXPECT_TRUE(reg.keyExists(kLm, "Locked\\Inner"));
    EXPECT_EQ(reg.data(kLm, "Locked\\Inner", "v"), "1");
}

TEST(MemoryRegistry, KeysCarryTheirLastWriteText) {
    MemoryRegistry reg;
    reg.setTimestamp("3/4/2026 9:00:00 AM");
    reg.addKey(kLm, "K\\Child");
    reg.setTimestamp("3/5/2026 10:00:00 AM");
    std::vector<RegSubKey> keys;
    reg.listSubKeys(kLm, "K", keys);
    ASSERT_EQ(keys.size(), 1u);
    EXPECT_EQ(keys[0].lastWrite, "3/4/2026 9:00:00 AM");
    reg.setString(kLm, "K\\Child", "v", "x");
    reg.listSubKeys(kLm, "K", keys);
    EXPECT_EQ(keys[0].lastWrite, "3/5/2026 10:00:00 AM");
}

TEST(MemoryRegistry, DwordsAreFourLittleEndianBytes) {
    MemoryRegistry reg;
    reg.setDword(kLm, "K", "n", 0x01020304u);
    EXPECT_EQ(reg.data(kLm, "K", "n"), std::string("\x04\x03\x02\x01", 4));
    EXPECT_EQ(reg.dword(kLm, "K", "n"), 0x01020304u);
    reg.setString(kLm, "K", "s", "4");
    EXPECT_EQ(reg.dword(kLm, "K", "s"), std::nullopt);
}

}  // namespace
}  // namespace orvex::platform::memory
