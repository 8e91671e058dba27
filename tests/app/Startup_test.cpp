// Startup_test.cpp: Main's switches, single instance, registry values, folders, pending
// update and the first window's placement.
#include "app/Startup.h"

#include "core/AppState.h"
#include "pages/MainWindow.h"
#include "pages/ScanPage.h"
#include "support/MemoryFixture.h"
#include "ui/Form.h"

namespace orvex {
namespace {

using platform::Hive;

constexpr const char* kKey = "Software\\Norvani\\Orvex Sentry";
constexpr const char* kAppFolder = "C:\\Program Files\\Orvex Sentry";

class StartupTest : public testing::MemoryPlatformTest {
  protected:
    StartupTest() {
        system.setExecutablePath(std::string(kAppFolder) + "\\OrvexSentry.exe");
        files.addFolder(kAppFolder);
        files.addFolder("C:\\Data");
        registry.setString(Hive::LocalMachine, kKey, "DataPath", "C:\\Data");
    }
    // The next Main runs as a new process would: fresh state, no mutexes left behind.
    void NewProcess() {
        App() = AppState{};
        ui::ResetForms();
        system.mutexes().named.clear();
    }

    std::string Value(const char* name) {
        return registry.data(Hive::LocalMachine, kKey, name).value_or("<missing>");
    }
};

TEST_F(StartupTest, QuietSpellingsCloseOtherCopiesAndTouchNothingElse) {
    for (const char* spelling : {"/q", "/Q", "\\q", "\\Q"}) {
        NewProcess();
        registry.removeKey(Hive::LocalMachine, kKey);
        const auto own = system.addWindow("Orvex Sentry", processes.currentProcessId());
        const auto other = system.addWindow("Scan - ORVEX SENTRY", 77);
        const auto unrelated = system.addWindow("Notepad", 78);

        EXPECT_EQ(Main(spelling), StartOutcome::QuietExit) << spelling;
        const auto& closed = system.closeRequests();
        EXPECT_NE(std::find(closed.begin(), closed.end(), other), closed.end());
        EXPECT_EQ(std::find(closed.begin(), closed.end(), own), closed.end());
        EXPECT_EQ(std::find(closed.begin(), closed.end(), unrelated), closed.end());
        EXPECT_FALSE(registry.hasKey(Hive::LocalMachine, kKey));
        EXPECT_EQ(App().SingleInstanceMutex, 0u);
        for (auto w : {own, other, unrelated})
            system.removeWindow(w);
    }
}

TEST_F(StartupTest, SecondStartOfTheSameProgramEndsAtOnce) {
    auto mutexes = std::make_shared<platform::memory::MutexTable>();
    platform::memory::MemoryPlatform first(mutexes), second(mutexes), otherUser(mutexes);
    for (auto* m : {&first, &second, &otherUser}) {
        m->files.addFolder(kAppFolder);
        m->system.setExecutablePath(std::string(kAppFolder) + "\\OrvexSentry.exe");
    }
    otherUser.system.setUserName("Someone Else");
    {
        platform::ScopedPlatform installed(first.view());
        EXPECT_EQ(Main(""), StartOutcome::Running);
    }
    NewProcess();
    {
        platform::ScopedPlatform installed(second.view());
        EXPECT_EQ(Main(""), StartOutcome::SecondInstance);
        EXPECT_FALSE(second.registry.hasKey(Hive::LocalMachine, kKey));
    }
    NewProcess();
    platform::ScopedPlatform installed(otherUser.view());
    EXPECT_EQ(Main(""), StartOutcome::Running);
}

TEST_F(StartupTest, WritesItsRegistryValuesAndFolders) {
    registry.setString(Hive::LocalMachine, kKey, "Executable", "old.exe");
    registry.setString(Hive::LocalMachine, kKey, "InstalledPath", "D:\\old\\");

    EXPECT_EQ(Main(""), StartOutcome::Running);
    EXPECT_EQ(Value("Executable") + "|" + Value("InstalledPath") + "|" + App().AppPath + "|" +
                  App().DataFolder + "|" + App().BackupFolder + "|" + App().UpdateBaseUrl,
              "OrvexSentry.exe|C:\\Program Files\\Orvex Sentry\\|C:\\Program Files\\Orvex Sentry|"
              "C:\\Data\\|C:\\Program Files\\Orvex Sentry\\Backup|http://update.orvexsentry.com/");
    EXPECT_TRUE(files.folderExists(App().BackupFolder));
    EXPECT_EQ(host.MousePointer(), ui::pointer::kArrow);  // actions ends the busy time
    EXPECT_TRUE(frmmain().Visible);
}

TEST_F(StartupTest, RegistryValuesAreWrittenEvenWhenLaterStepsFail) {
    // A file where the backup folder belongs makes the folder step fail.
    files.addFile(std::string(kAppFolder) + "\\Backup", "not a folder");
    EXPECT_EQ(Main(""), StartOutcome::Running);
    EXPECT_EQ(Value("InstalledPath"), std::string(kAppFolder) + "\\");
    EXPECT_TRUE(files.fileExists("C:\\Data\\ovs.ph"));
    EXPECT_TRUE(frmmain().Visible);

    // A missing data path gives a bare backslash.
    NewProcess();
    registry.removeKey(Hive::LocalMachine, kKey);
    Main("");
    EXPECT_EQ(App().DataFolder, "\\");
}

// Without its file the pending update is kept for a later start.
TEST_F(StartupTest, PendingApplicationUpdateIsHandedOverOnceItsFileExists) {
    registry.setString(Hive::LocalMachine, kKey, "Application Update", "1");
    EXPECT_EQ(Main(""), StartOutcome::Running);
    EXPECT_EQ(Value("Application Update"), "1");
    EXPECT_TRUE(processes.startCalls().empty());

    NewProcess();
    const auto shownBefore = host.Shown().size();
    files.addFile(std::string(kAppFolder) + "\\update\\ovsupdate.exe", "MZ");

    EXPECT_EQ(Main(""), StartOutcome::UpdateHandedOver);
    ASSERT_EQ(processes.startCalls().size(), 1u);
    EXPECT_EQ(processes.startCalls()[0].path, std::string(kAppFolder) + "\\update\\ovsupdate.exe");
    EXPECT_TRUE(processes.startCalls()[0].hidden);
    EXPECT_EQ(Value("Application Update"), "");
    EXPECT_EQ(host.Shown().size(), shownBefore);  // no window
    EXPECT_EQ(App().SingleInstanceMutex, 0u);
}

TEST_F(StartupTest, TestSwitchChoosesTheTestEndpointScanOpensTheScanPageAndNothingElseCounts) {
    Main("/test");
    EXPECT_TRUE(IsTrue(App().TestMode));
    EXPECT_EQ(App().UpdateBaseUrl, "http://test.orvexsentry.com:1051/");

    NewProcess();
    Main("/scan");
    EXPECT_TRUE(IsTrue(App().ScanOnStart));
    EXPECT_FALSE(frmmain().Visible);
    const auto& shown = host.Shown();
    EXPECT_NE(std::find(shown.begin(), shown.end(), "frmscan"), shown.end());

    // The argument string is compared whole.
    NewProcess();
    system.addWindow("Orvex Sentry", 77);
    EXPECT_EQ(Main("/Q "), StartOutcome::Running);
    EXPECT_TRUE(system.closeRequests().empty());
    NewProcess();
    Main("/test /scan");
    EXPECT_FALSE(IsTrue(App().TestMode) || IsTrue(App().ScanOnStart));
}

TEST_F(StartupTest, MutexNameFollowsTheWindowsFamily) {
    struct Case {
        std::uint32_t id, major, minor;
        const char* name;  // nullptr: no mutex
    };
    const Case cases[] = {
        {2, 5, 1, "Global\\\\_Orvex_Sentry"}, {1, 4, 10, "\\\\_Orvex_Sentry"}, {2, 6, 1, nullptr}};
    for (const auto& c : cases) {
        platform::memory::MemoryPlatform m;
        m.files.addFolder(kAppFolder);
        m.processes.setOsVersion(c.id, c.major, c.minor);
        platform::ScopedPlatform installed(m.view());
        NewProcess();
        Main("");
        if (c.name == nullptr) {
            EXPECT_EQ(App().SingleInstanceMutex, 0u) << c.major;
        } else {
            EXPECT_TRUE(m.system.holdsMutex(c.name)) << c.name;
            ReleaseSingleInstanceMutex();
        }
    }
}

TEST_F(StartupTest, ScreenMeasuresPlaceTheFirstWindow) {
    system.setScreenSize(1024, 768);
    Main("");
    EXPECT_FALSE(IsTrue(App().HighDpi));
    EXPECT_EQ(App().WindowLeft, 1024 * 15 / 2 - 1000);
    EXPECT_EQ(App().WindowCentreY, 768 * 15 / 2);

    NewProcess();
    system.setDpi(120);
    Main("");
    EXPECT_EQ(App().WindowLeft, 1024 * 12 / 2 - 1000);
    EXPECT_TRUE(IsTrue(App().HighDpi));

    // The screen reader notice comes before everything else.
    NewProcess();
    system.setScreenReader(true);
    const auto before = host.Shown().size();
    Main("");
    ASSERT_GE(host.Shown().size(), before + 2);
    EXPECT_EQ(host.Shown()[before], "frmScreen");
    EXPECT_EQ(host.Shown()[before + 1], "frmmain");
}

}  // namespace
}  // namespace orvex
