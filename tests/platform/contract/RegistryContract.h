// RegistryContract.h: what every registry back-end does as advapi32 does, below a fresh key
// of its maker (registry(), root() under HKEY_CURRENT_USER).
#pragma once

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "platform/Registry.h"
#include "platform/contract/Contract.h"
#include "support/RegistrySamples.h"

namespace orvex::testing {

using platform::RegSubKey;
using platform::RegValue;
namespace regtype = platform::regtype;
namespace regstatus = platform::regstatus;

template <class Maker>
class RegistryContract : public ContractTest<Maker> {
  protected:
    static constexpr platform::Hive kUser = platform::Hive::CurrentUser;

    std::string at(std::string_view path) { return this->maker.root() + "\\" + std::string(path); }
    RegValue read(std::string_view path, std::string_view name) {
        RegValue value;
        EXPECT_EQ(reg.readValue(kUser, at(path), name, value), regstatus::kOk) << name;
        return value;
    }
    std::set<std::string> subKeys(std::string_view path) {
        std::vector<RegSubKey> keys;
        EXPECT_EQ(reg.listSubKeys(kUser, at(path), keys), regstatus::kOk);
        std::set<std::string> names;
        for (const RegSubKey& key : keys) {
            names.insert(key.name);
            EXPECT_FALSE(key.lastWrite.empty()) << key.name;
        }
        return names;
    }

    platform::RegistryBackend& reg = this->maker.registry();
};

TYPED_TEST_SUITE_P(RegistryContract);

TYPED_TEST_P(RegistryContract, KeysAreMadeWithParentsFoundWithoutCaseAndDeletedAsTrees) {
    auto& reg = this->reg;
    const auto kUser = this->kUser;
    for (const char* path : {"Tree\\Alpha\\Deep", "Tree\\Beta\\", "tree\\ALPHA", "Sibling"})
        ASSERT_EQ(reg.createKey(kUser, this->at(path)), regstatus::kOk) << path;
    ASSERT_EQ(reg.writeValue(kUser, this->at("Tree\\Alpha"), {"v", regtype::kSz, "x"}),
              regstatus::kOk);
    EXPECT_TRUE(reg.keyExists(kUser, this->at("TREE\\alpha\\deep")));
    EXPECT_EQ(this->subKeys("tree"), (std::set<std::string>{"Alpha", "Beta"}));
    EXPECT_FALSE(reg.keyExists(platform::Hive::LocalMachine, this->at("Tree")));
    EXPECT_FALSE(reg.keyExists(static_cast<platform::Hive>(0x12345678u), ""));
    EXPECT_EQ(reg.deleteTree(kUser, this->at("tree")), regstatus::kOk);
    EXPECT_EQ(this->subKeys(""), std::set<std::string>{"Sibling"});
    EXPECT_EQ(reg.deleteTree(kUser, this->at("Tree")), regstatus::kNotFound);
    // The hive itself is never a tree to delete.
    EXPECT_EQ(reg.deleteTree(kUser, ""), regstatus::kInvalid);
    EXPECT_TRUE(reg.keyExists(kUser, this->maker.root()));
}

TYPED_TEST_P(RegistryContract, ValuesOfEveryTypeComeBackAsWritten) {
    std::string big(300000, '\0');
    for (std::size_t i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>(i * 7);
    std::vector<RegValue> written = SampleValues();
    written.insert(written.end(), {{"Expand", regtype::kExpandSz, ""},
                                   {"ShortDword", regtype::kDword, "\x01\x02"},
                                   {"Big", regtype::kBinary, big},
                                   {"LongText", regtype::kSz, std::string(70000, 'q')}});
    const std::string root = this->maker.root();
    for (const RegValue& value : written)
        ASSERT_EQ(this->reg.writeValue(this->kUser, root, value), regstatus::kOk) << value.name;
    std::vector<RegValue> listed;
    ASSERT_EQ(this->reg.listValues(this->kUser, root, listed), regstatus::kOk);
    ASSERT_EQ(listed.size(), written.size());
    for (const RegValue& value : written) {
        const RegValue back = this->read("", value.name);
        EXPECT_EQ(back.type, value.type) << value.name;
        EXPECT_EQ(back.data, value.data) << value.name;
        EXPECT_TRUE(std::any_of(listed.begin(), listed.end(), [&](const RegValue& v) {
            return v.name == value.name && v.data == value.data;
        })) << value.name;
    }
}

TYPED_TEST_P(RegistryContract, ValueNamesIgnoreCaseAndMissingThingsAreNotFound) {
    auto& reg = this->reg;
    const auto kUser = this->kUser;
    const std::string missing = this->at("Missing"), root = this->maker.root();
    ASSERT_EQ(reg.writeValue(kUser, root, {"DataPath", regtype::kSz, "C:"}), regstatus::kOk);
    ASSERT_EQ(reg.writeValue(kUser, root, {"DATAPATH", regtype::kSz, "D:"}), regstatus::kOk);
    EXPECT_EQ(this->read("", "datapath").data, "D:");
    std::vector<RegValue> values;
    reg.listValues(kUser, root, values);
    ASSERT_EQ(values.size(), 1u);
    EXPECT_EQ(values[0].name, "DataPath");  // the first spelling stays
    EXPECT_EQ(reg.deleteValue(kUser, root, "DATApath"), regstatus::kOk);
    RegValue value;
    std::vector<RegSubKey> keys{{"stale", ""}};
    EXPECT_EQ(reg.readValue(kUser, root, "DataPath", value), regstatus::kNotFound);
    EXPECT_EQ(reg.readValue(kUser, missing, "x", value), regstatus::kNotFound);
    values = {{"stale", regtype::kSz, ""}};
    EXPECT_EQ(reg.listValues(kUser, missing, values), regstatus::kNotFound);
    EXPECT_EQ(reg.listSubKeys(kUser, missing, keys), regstatus::kNotFound);
    EXPECT_TRUE(values.empty() && keys.empty());
    EXPECT_EQ(reg.deleteValue(kUser, missing, "x"), regstatus::kNotFound);
    // Writing does not create the key.
    EXPECT_EQ(reg.writeValue(kUser, missing, {"x", regtype::kSz, "y"}), regstatus::kNotFound);
    EXPECT_FALSE(reg.keyExists(kUser, missing));
}

REGISTER_TYPED_TEST_SUITE_P(RegistryContract,
                            KeysAreMadeWithParentsFoundWithoutCaseAndDeletedAsTrees,
                            ValuesOfEveryTypeComeBackAsWritten,
                            ValueNamesIgnoreCaseAndMissingThingsAreNotFound);

}  // namespace orvex::testing
