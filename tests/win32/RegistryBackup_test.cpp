// RegistryBackup_test.cpp: the backup of a registry key on Wine's real registry. What
// SaveKey wrote and RestoreKey brought back must look to `reg export` as the original did,
// and Wine's regedit must import the same file to the same effect.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "support/RegistrySamples.h"
#include "win32/SleepingChild.h"

namespace orvex::platform {
namespace {

constexpr Hive kUser = Hive::CurrentUser;
const std::string kKey = "Software\\OrvexSentryBackupTest";

long RunToEnd(const std::string& commandLine) {
    return testing::RunAndWait(commandLine, CREATE_NO_WINDOW, 120000);
}

class RegistryBackupTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
        Registry().deleteTree(kUser, kKey);
        for (const char* sub : {"", "\\Child\\Grand"}) {
            ASSERT_EQ(Registry().createKey(kUser, kKey + sub), regstatus::kOk);
            for (const RegValue& v : testing::SampleValues())
                ASSERT_EQ(Registry().writeValue(kUser, kKey + sub, v), regstatus::kOk) << v.name;
        }
        ASSERT_EQ(Registry().createKey(kUser, kKey + "\\Child\\Empty"), regstatus::kOk);
    }
    void TearDown() override {
        Registry().deleteTree(kUser, kKey);
        std::filesystem::remove_all(dir);
    }

    // The key as `reg export` writes it.
    std::string Export(const std::string& name) {
        const std::string file = dir + "\\" + name;
        EXPECT_EQ(RunToEnd("reg.exe export HKCU\\" + kKey + " \"" + file + "\" /y"), 0);
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::unique_ptr<OwnedPlatform> host = MakeHostPlatform();
    ScopedPlatform installed{host->view()};
    std::string dir = (std::filesystem::temp_directory_path() / "OrvexBackupTest").string();
    std::string backup = dir + "\\1.asw";
};

TEST_F(RegistryBackupTest, RestoreGivesBackWhatRegExportShowed) {
    const std::string before = Export("before.reg");
    ASSERT_GT(before.size(), 200u);
    RegistryHelper reg;
    ASSERT_TRUE(reg.SaveKey(kUser, kKey, backup));
    EXPECT_FALSE(reg.SaveKey(kUser, kKey, backup));
    reg.RootKey(kUser);
    reg.KeyPath(kKey);
    EXPECT_EQ(reg.DeleteValue("Lines"), regstatus::kOk);
    EXPECT_EQ(reg.DeleteValue("Lines"), regstatus::kNotFound);
    EXPECT_EQ(reg.DeleteKey("Child"), regstatus::kOk);
    ASSERT_TRUE(reg.SetValue("Stray", "planted"));
    ASSERT_TRUE(reg.RestoreKey(backup, kUser, kKey));
    EXPECT_EQ(Export("restored.reg"), before);
    EXPECT_EQ(reg.DeleteKey(""), regstatus::kOk);
    EXPECT_FALSE(reg.KeyExists());
}

TEST_F(RegistryBackupTest, RegeditImportsTheBackup) {
    char regedit[MAX_PATH];
    if (SearchPathA(nullptr, "regedit.exe", nullptr, MAX_PATH, regedit, nullptr) == 0)
        GTEST_SKIP() << "no regedit.exe";
    const std::string before = Export("before.reg");
    ASSERT_TRUE(RegistryHelper().SaveKey(kUser, kKey, backup));
    ASSERT_EQ(Registry().deleteTree(kUser, kKey), regstatus::kOk);
    std::string command = "\"";
    command.append(regedit).append("\" /s \"").append(backup) += '"';
    EXPECT_EQ(RunToEnd(command), 0);
    EXPECT_EQ(Export("imported.reg"), before);
}

}  // namespace
}  // namespace orvex::platform
