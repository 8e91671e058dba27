// PosixRegistry_test.cpp: the registry kept in a JSON file: round trip, corrupt files,
// durable saves.
#include "platform/posix/PosixRegistry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "platform/posix/PosixTestFolder.h"

namespace orvex::platform {
namespace {

using orvex::testing::PosixTestFolder;

constexpr Hive kLm = Hive::LocalMachine;
const std::string kProduct = "Software\\Norvani\\Orvex Sentry";

std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(folder)) {
        names.push_back(e.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class PosixRegistryTest : public ::testing::Test {
  protected:
    PosixRegistryTest() {
        const char* old = std::getenv("ORVEX_REGISTRY");
        if (old != nullptr) saved_ = old;
        ::setenv("ORVEX_REGISTRY", file.c_str(), 1);
    }
    ~PosixRegistryTest() override {
        if (saved_) {
            ::setenv("ORVEX_REGISTRY", saved_->c_str(), 1);
        } else {
            ::unsetenv("ORVEX_REGISTRY");
        }
    }

    RegValue read(PosixRegistry& registry, const std::string& path, const std::string& name) {
        RegValue v;
        EXPECT_EQ(registry.readValue(kLm, path, name, v), regstatus::kOk) << name;
        return v;
    }

    PosixTestFolder folder;
    std::string file = folder / "registry.json";

  private:
    std::optional<std::string> saved_;
};

TEST_F(PosixRegistryTest, EveryChangeSurvivesARestartByteForByte) {
    const std::string ansi = "Caf\xE9 \x80 \xFF";  // Windows-1252 bytes, not UTF-8
    const std::string binary("\x00\x01\xFF\x7F", 4);
    {
        PosixRegistry registry;
        EXPECT_EQ(registry.file(), file);
        ASSERT_EQ(registry.createKey(kLm, kProduct + "\\Zeta"), regstatus::kOk);
        ASSERT_EQ(registry.createKey(kLm, kProduct + "\\Alpha"), regstatus::kOk);
        registry.writeValue(kLm, kProduct, {"DataPath", regtype::kSz, "C:\\Data\\"});
        registry.writeValue(kLm, kProduct, {"", regtype::kSz, ansi});
        registry.writeValue(kLm, kProduct, {"Blob", regtype::kBinary, binary});
        registry.writeValue(kLm, kProduct,
                            {"Count", regtype::kDword, std::string("\x07\0\0\0", 4)});
        registry.writeValue(kLm, kProduct, {"Paths", regtype::kMultiSz, std::string("a\0b\0", 4)});
        registry.writeValue(kLm, kProduct, {"Gone", regtype::kSz, "x"});
        registry.deleteValue(kLm, kProduct, "gone");
        registry.createKey(Hive::CurrentUser, "Software\\Other\\Deep");
        registry.deleteTree(Hive::CurrentUser, "Software\\Other\\Deep");
    }
    PosixRegistry again;  // the path from ORVEX_REGISTRY again
    EXPECT_EQ(read(again, kProduct, "DataPath").data, "C:\\Data\\");
    EXPECT_EQ(read(again, kProduct, "").data, ansi);
    RegValue blob = read(again, kProduct, "blob");
    EXPECT_EQ(blob.type, regtype::kBinary);
    EXPECT_EQ(blob.data, binary);
    EXPECT_EQ(read(again, kProduct, "Count").type, regtype::kDword);
    EXPECT_EQ(read(again, kProduct, "Count").data, std::string("\x07\0\0\0", 4));
    EXPECT_EQ(read(again, kProduct, "Paths").data, std::string("a\0b\0", 4));
    RegValue none;
    EXPECT_EQ(again.readValue(kLm, kProduct, "Gone", none), regstatus::kNotFound);
    EXPECT_TRUE(again.keyExists(Hive::CurrentUser, "Software\\Other"));
    EXPECT_FALSE(again.keyExists(Hive::CurrentUser, "Software\\Other\\Deep"));

    std::vector<RegSubKey> subKeys;
    ASSERT_EQ(again.listSubKeys(kLm, kProduct, subKeys), regstatus::kOk);
    ASSERT_EQ(subKeys.size(), 2u);
    EXPECT_EQ(subKeys[0].name, "Zeta");  // creation order, as the engine sees it
    EXPECT_EQ(subKeys[1].name, "Alpha");
    EXPECT_FALSE(subKeys[0].lastWrite.empty());
    std::vector<RegValue> values;
    again.listValues(kLm, kProduct, values);
    ASSERT_EQ(values.size(), 5u);
    EXPECT_EQ(values[0].name, "DataPath");

    // Saved through a temporary file that is renamed into place: nothing else is left.
    EXPECT_EQ(FilesIn(folder.path()), std::vector<std::string>{"registry.json"});
    EXPECT_TRUE(nlohmann::json::accept(folder.read("registry.json")));
}

TEST_F(PosixRegistryTest, MissingFileIsAnEmptyRegistryWithoutComplaint) {
    ::testing::internal::CaptureStderr();
    PosixRegistry registry;
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(registry.keyExists(kLm, "Software"));
    EXPECT_FALSE(std::filesystem::exists(file));  // nothing written until a change
}

TEST_F(PosixRegistryTest, CorruptFilesStartEmptyAreKeptAsideAndReplacedOnTheNextChange) {
    const char* broken[] = {
        "{\"format\": 1, \"hives\": {\"HKEY_LOCAL_MACHINE\": {\"values\": [",  // cut short
        "[1, 2, 3]",
        "{\"format\": 1, \"hives\": {\"HKEY_NOWHERE\": {\"values\": [], \"keys\": []}}}",
        "{\"format\": 1, \"hives\": {\"HKEY_LOCAL_MACHINE\": {\"values\": [{\"name\": \"x\", "
        "\"type\": 3, \"hex\": \"0g\"}], \"keys\": []}}}",
        "{\"format\": 1, \"hives\": {\"HKEY_LOCAL_MACHINE\": {\"values\": [], \"keys\": "
        "[{\"name\": \"a\\\\b\", \"lastWrite\": \"\", \"values\": [], \"keys\": []}]}}}",
        "{\"format\": 1, \"hives\": {\"HKEY_LOCAL_MACHINE\": {\"values\": [{\"name\": "
        "\"\\u20ac\", \"type\": 1, \"text\": \"\"}], \"keys\": []}}}",
        "\xFF\xFE not even text",
    };
    for (const char* text : broken) {
        SCOPED_TRACE(text);
        std::filesystem::remove(file + ".corrupt");
        folder.write("registry.json", text);
        ::testing::internal::CaptureStderr();
        PosixRegistry registry;
        std::string message = ::testing::internal::GetCapturedStderr();
        EXPECT_NE(message.find("corrupt"), std::string::npos) << message;
        EXPECT_FALSE(registry.keyExists(kLm, "Software"));
        EXPECT_EQ(folder.read("registry.json.corrupt"), text);

        ASSERT_EQ(registry.createKey(kLm, "Software"), regstatus::kOk);
        EXPECT_TRUE(PosixRegistry(file).keyExists(kLm, "Software"));
    }
}

TEST_F(PosixRegistryTest, AFailedSaveKeepsWorkingInMemoryAndSaysSoOnce) {
    folder.write("plain", "");
    ::testing::internal::CaptureStderr();
    PosixRegistry registry(folder / "plain/registry.json");  // a file where a folder must be
    registry.createKey(kLm, "Software\\A");
    registry.createKey(kLm, "Software\\B");
    std::string message = ::testing::internal::GetCapturedStderr();
    EXPECT_TRUE(registry.keyExists(kLm, "Software\\B"));
    EXPECT_NE(message.find("cannot save"), std::string::npos);
    EXPECT_EQ(message.find("cannot save"), message.rfind("cannot save"));
}

TEST_F(PosixRegistryTest, KeysDeeperThanWindowsAllowsAreRefused) {
    PosixRegistry registry;
    std::string deep = "k";
    for (int i = 0; i < 600; ++i)
        deep += "\\k";
    EXPECT_EQ(registry.createKey(kLm, deep), regstatus::kInvalid);
    EXPECT_FALSE(registry.keyExists(kLm, "k"));
}

}  // namespace
}  // namespace orvex::platform
