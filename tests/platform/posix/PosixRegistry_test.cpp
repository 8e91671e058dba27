// PosixRegistry_test.cpp: the registry kept in a JSON file named by ORVEX_REGISTRY: round
// trip, corrupt files, durable saves.
#include "platform/posix/PosixRegistry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <tuple>

#include "platform/Platform.h"
#include "platform/posix/PosixTestFolder.h"
#include "support/RegistrySamples.h"

namespace orvex::platform {
namespace {

using orvex::testing::PosixTestFolder;

constexpr Hive kLm = Hive::LocalMachine;
const std::string kProduct = "Software\\Norvani\\Orvex Sentry";

class PosixRegistryTest : public ::testing::Test {
  protected:
    PosixTestFolder folder;
    std::string file = folder / "registry.json";
};

TEST_F(PosixRegistryTest, EveryChangeSurvivesARestartByteForByte) {
    const std::vector<RegValue> values = orvex::testing::SampleValues();
    {
        // The host platform takes the file from ORVEX_REGISTRY.
        ::setenv("ORVEX_REGISTRY", file.c_str(), 1);
        const auto host = MakeHostPlatform();
        ::unsetenv("ORVEX_REGISTRY");
        RegistryBackend& registry = *host->view().registry;
        for (const char* key : {"Zeta", "Alpha"})
            ASSERT_EQ(registry.createKey(kLm, kProduct + "\\" + key), regstatus::kOk);
        for (const RegValue& value : values)
            registry.writeValue(kLm, kProduct, value);
    }
    PosixRegistry again(file);
    std::vector<RegValue> listed;
    ASSERT_EQ(again.listValues(kLm, kProduct, listed), regstatus::kOk);
    ASSERT_EQ(listed.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(std::tie(listed[i].name, listed[i].type, listed[i].data),
                  std::tie(values[i].name, values[i].type, values[i].data));
    std::vector<RegSubKey> subKeys;
    ASSERT_EQ(again.listSubKeys(kLm, kProduct, subKeys), regstatus::kOk);
    ASSERT_EQ(subKeys.size(), 2u);
    EXPECT_EQ(subKeys[0].name + subKeys[1].name, "ZetaAlpha");  // creation order
    // Saved through a temporary file that is renamed into place: nothing else is left.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
    EXPECT_TRUE(nlohmann::json::accept(folder.read("registry.json")));
}

TEST_F(PosixRegistryTest, CorruptFilesStartEmptyAreKeptAsideAndReplacedOnTheNextChange) {
    const std::string lm = R"({"format": 1, "hives": {"HKEY_LOCAL_MACHINE": )";
    const std::string broken[] = {
        lm + R"({"values": [)",  // cut short
        R"({"format": 1, "hives": {"HKEY_NOWHERE": {"values": [], "keys": []}}})",
        lm + R"({"values": [{"name": "x", "type": 3, "hex": "0g"}], "keys": []}}})",
        lm +
            R"({"values": [], "keys": [{"name": "a\\b", "lastWrite": "", "values": [], "keys": []}]}}})",
        lm + R"({"values": [{"name": "\u20ac", "type": 1, "text": ""}], "keys": []}}})",
        "\xFF\xFE not even text",
    };
    for (const std::string& text : broken) {
        SCOPED_TRACE(text);
        std::filesystem::remove(file + ".corrupt");
        folder.write("registry.json", text);
        ::testing::internal::CaptureStderr();
        PosixRegistry registry(file);
        std::string message = ::testing::internal::GetCapturedStderr();
        EXPECT_NE(message.find("corrupt"), std::string::npos) << message;
        EXPECT_FALSE(registry.keyExists(kLm, "Software"));
        EXPECT_EQ(folder.read("registry.json.corrupt"), text);
        ASSERT_EQ(registry.createKey(kLm, "Software"), regstatus::kOk);
        EXPECT_TRUE(PosixRegistry(file).keyExists(kLm, "Software"));
    }
}

TEST_F(PosixRegistryTest, MissingFilesAreEmptyAndFailedSavesKeepWorkingInMemoryAndSaySoOnce) {
    folder.write("plain", "");
    ::testing::internal::CaptureStderr();
    PosixRegistry missing(file);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(missing.keyExists(kLm, "Software"));
    std::string deep = "k";
    for (int i = 0; i < 600; ++i)
        deep += "\\k";
    EXPECT_EQ(missing.createKey(kLm, deep), regstatus::kInvalid);
    EXPECT_FALSE(std::filesystem::exists(file));  // nothing written until a change
    ::testing::internal::CaptureStderr();
    PosixRegistry registry(folder / "plain/registry.json");  // a file where a folder must be
    registry.createKey(kLm, "Software\\A");
    registry.createKey(kLm, "Software\\B");
    std::string message = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(registry.keyExists(kLm, "Software\\B"));
    EXPECT_NE(message.find("cannot save"), std::string::npos);
    EXPECT_EQ(message.find("cannot save"), message.rfind("cannot save"));
}

}  // namespace
}  // namespace orvex::platform
