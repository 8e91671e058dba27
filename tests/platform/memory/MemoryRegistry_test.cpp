// MemoryRegistry_test.cpp: what only the memory registry does: creation order, scripted
// denials and timestamps, and its refusal of malformed paths.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform::memory {
namespace {

using ::testing::ElementsAre;

constexpr Hive kLm = Hive::LocalMachine;

TEST(MemoryRegistry, EnumeratesInCreationOrderKeepsDwordsAsBytesAndRefusesEmptyParts) {
    MemoryRegistry reg;
    for (const char* name : {"b", "a", "C"})
        reg.addKey(kLm, std::string("K\\") + name);
    reg.setString(kLm, "K", "zeta", "4");
    reg.setDword(kLm, "K", "Alpha", 0x01020304u);
    EXPECT_THAT(reg.subKeyNames(kLm, "k"), ElementsAre("b", "a", "C"));
    EXPECT_THAT(reg.valueNames(kLm, "K"), ElementsAre("zeta", "Alpha"));
    EXPECT_EQ(reg.data(kLm, "K", "Alpha"), std::string("\x04\x03\x02\x01", 4));
    EXPECT_EQ(reg.dword(kLm, "K", "Alpha"), 0x01020304u);
    EXPECT_EQ(reg.dword(kLm, "K", "zeta"), std::nullopt);
    EXPECT_EQ(reg.createKey(kLm, "A\\\\C"), regstatus::kInvalid);
    EXPECT_FALSE(reg.keyExists(kLm, "A") || reg.keyExists(kLm, "\\K"));
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
    EXPECT_EQ(reg.data(kLm, "Locked\\Inner", "v"), "1");
}

TEST(MemoryRegistry, KeysCarryTheirLastWriteText) {
    MemoryRegistry reg;
    reg.setTimestamp("3/4/2026 9:00:00 AM");
    reg.addKey(kLm, "K\\Child");
    std::vector<RegSubKey> keys;
    for (const char* stamp : {"3/4/2026 9:00:00 AM", "3/5/2026 10:00:00 AM"}) {
        reg.setTimestamp("3/5/2026 10:00:00 AM");
        reg.listSubKeys(kLm, "K", keys);
        ASSERT_EQ(keys.size(), 1u);
        EXPECT_EQ(keys[0].lastWrite, stamp);
        reg.setString(kLm, "K\\Child", "v", "x");  // a change stamps the key anew
    }
}

}  // namespace
}  // namespace orvex::platform::memory
