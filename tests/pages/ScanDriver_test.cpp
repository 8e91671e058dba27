// ScanDriver_test.cpp: frmscan and ScanItems: a complete scan, a stop at every yield of a
// scan, leaving and closing the page, the stage texts, the drives that are walked, LastScan
// and the yielding pause.
#include <algorithm>
#include <string>

#include "core/Config.h"
#include "pages/MainWindow.h"
#include "pages/ResultsPage.h"
#include "pages/ScanPage.h"
#include "platform/Md5.h"
#include "scan/ScanFixture.h"

namespace orvex {
namespace {

using platform::Hive;

const std::string kBadBytes = "bytes of a known bad file";

class ScanDriverTest : public testing::ScanTest {
  protected:
    ScanDriverTest() {
        LoadDefinitions("Ver=11/22/2026\n[MD5]\n" + platform::Md5Hex(kBadBytes) +
                        "|HashThreat\n[End]\n[Files]\nNameThreat|named.exe\n"
                        "OtherThreat|other.exe\n[End]\n"
                        "[Exclusion]\nnamed.exe|namethreat|||0|1\n[End]\n");
        for (int n : {21, 28, 34, 39, 706, 1219, 1220})
            LngArray()[n] = "text " + std::to_string(n);
        files.addFile("C:\\Users\\a\\bad.exe", kBadBytes);
        files.addFile("C:\\Users\\b\\named.exe", "x");
        files.addFile("C:\\Users\\b\\fine.exe", "y");
    }

    bool LastScanWritten() { return registry.hasValue(Hive::LocalMachine, kKey, "LastScan"); }

    // A new scan as the rescan commands start one.
    void Scan() {
        App().StopRequested = VbFalse;
        frmscan().ScanItems();
    }

    bool FileRowsFound() {
        for (const ScumRow& row : Rows())
            if (row.category == "FileSystem") return true;
        return false;
    }

    // "ScanStopped ScanRunning StopRequested, frmscan loaded, LastScan written; frmresults
    // shown or not and its heading".
    std::string Outcome() {
        std::string flags;
        for (bool on : {IsTrue(App().ScanStopped), IsTrue(App().ScanRunning),
                        IsTrue(App().StopRequested), ui::IsLoaded<FrmScan>(), LastScanWritten()})
            flags += on ? '1' : '0';
        if (!ui::IsLoaded<FrmResults>()) return flags + "; no results";
        return flags + (frmresults().Visible ? "; shown " : "; hidden ") +
               frmresults().lbl2.Caption;
    }

    static constexpr const char* kKey = config::kProductKey;
};

TEST_F(ScanDriverTest, ACompleteScanRecordsLastScanAndShowsTheResults) {
    Scan();
    EXPECT_EQ(Findings(), (std::vector<std::string>{
                              "HashThreat|FileSystem|Confirmed|c:\\Users\\a\\|bad.exe",
                              "NameThreat|FileSystem|Confirmed|c:\\Users\\b\\|named.exe"}));
    EXPECT_EQ(registry.data(Hive::LocalMachine, kKey, "LastScan"), "11/22/2026 7:14:05 PM");
    EXPECT_EQ(Outcome(), "00101; shown text 21");  // the page's unload requests the stop
    EXPECT_TRUE(files.fileExists("C:\\Program Files\\Orvex\\Logged.txt"));
}

TEST_F(ScanDriverTest, AStopAtAnyYieldEndsTheScanAndKeepsLastScanUnlessTheScanWasThrough) {
    std::vector<std::string> stages;
    std::vector<bool> lastScanAt, pageShown;
    host.OnEveryYield([&](int) {
        stages.emplace_back(CurrentScanStage());
        lastScanAt.push_back(LastScanWritten());
        // The button can be pressed while the page stands and the results are not up.
        pageShown.push_back(ui::IsLoaded<FrmScan>() && !ui::IsLoaded<FrmResults>());
    });
    Scan();
    host.OnEveryYield(nullptr);
    const int yields = static_cast<int>(stages.size());
    ASSERT_GT(yields, 10);
    ASSERT_TRUE(LastScanWritten());

    int filesStops = 0;
    for (int n = 1; n <= yields; ++n) {
        if (!pageShown[n - 1]) continue;  // no button to press
        SCOPED_TRACE("stop at yield " + std::to_string(n) + ", stage " + stages[n - 1]);
        ui::ResetForms();
        registry.deleteValue(Hive::LocalMachine, kKey, "LastScan");
        host.AtYield(host.Yields() + n, [] { frmscan().Image1_Click(); });
        Scan();
        EXPECT_EQ(Outcome(), std::string(lastScanAt[n - 1] ? "10101" : "10100") + "; shown " +
                                 kScanStoppedHeading);
        EXPECT_TRUE(frmresults().Label1.Visible);
        if (stages[n - 1] == "files") {
            ++filesStops;
            EXPECT_FALSE(LastScanWritten());
        } else if (stages[n - 1] != "") {
            EXPECT_FALSE(FileRowsFound());  // the drives were never walked
        }
    }
    EXPECT_GT(filesStops, 0);
}

TEST_F(ScanDriverTest, TheResultsButtonLeavesWithoutMarkingTheScanStopped) {
    bool pressed = false;
    host.OnEveryYield([&](int) {
        if (ScumListOfRun().count() != 1 || pressed) return;
        pressed = true;
        frmscan().Image2_Click();
    });
    Scan();
    ASSERT_EQ(Rows().count(), 1);
    EXPECT_EQ(Outcome(), "00100; shown text 21");
}

TEST_F(ScanDriverTest, ClosingThePageStopsTheScanAndGoesToTheResults) {
    host.AtYield(host.Yields() + 5, [] { ui::Unload(frmscan()); });
    Scan();
    EXPECT_EQ(Outcome(), "00100; shown text 21");
}

TEST_F(ScanDriverTest, TheStageTextTellsAScheduledScanFromOneTheUserStarted) {
    std::string shown;
    host.OnEveryYield([&](int) {
        if (CurrentScanStage() == "files" && ui::IsLoaded<FrmScan>())
            shown = frmscan().lbl2.Caption;
    });
    Scan();
    EXPECT_EQ(shown, "text 1219");
    App().ScanOnStart = VbTrue;
    Scan();
    EXPECT_EQ(shown, "text 1220");
}

// frmmain's mailbox: a schedule is lost during a scan and wiped unless it is "/scan", which
// logs itself, closes the open pages and starts a scheduled scan.
TEST_F(ScanDriverTest, AScheduleInTheMailboxStartsAScanUnlessOneIsRunning) {
    const std::string log = "C:\\Program Files\\Orvex\\Logged.txt";
    const auto logLines = [&] {
        const std::string text = files.exists(log) ? files.contents(log) : "";
        return std::count(text.begin(), text.end(), '\n');
    };
    Scan();
    const auto scanLines = logLines();
    files.remove(log);
    ui::TextBox& mailbox = frmmain().txtScheduleCmd;
    frmmain().Visible = true;
    frmresults().Tag = "open before";
    App().ScanRunning = VbTrue;
    mailbox.SetText("/scan");
    EXPECT_EQ(mailbox.Text(), "/scan");
    App().ScanRunning = VbFalse;
    App().StopRequested = VbTrue;
    mailbox.SetText("/SCAN");
    EXPECT_EQ(mailbox.Text() + (IsTrue(App().StopRequested) ? " stop" : ""), "");
    EXPECT_EQ(logLines(), 0);
    EXPECT_EQ(frmresults().Tag, "open before");

    mailbox.SetText("/scan");
    EXPECT_EQ(logLines(), scanLines + 1);
    EXPECT_TRUE(IsTrue(App().Navigating) && IsTrue(App().ScanOnStart) && !frmmain().Visible);
    EXPECT_EQ(frmresults().Tag + Outcome(), "00101; shown text 21");
    EXPECT_EQ(mailbox.Text(), "");
}

// "Run Scan Again" after a stopped scan keeps the program through a new scan; cancel ends it,
// with the single-instance mutex released.
TEST_F(ScanDriverTest, TheResultsPageEndsTheProgramUnlessItGoesOnToAnotherPage) {
    host.AtYield(host.Yields() + 5, [] { frmscan().Image1_Click(); });
    Scan();
    ASSERT_TRUE(frmresults().Label1.Visible);
    frmresults().Label1.Click();
    EXPECT_TRUE(IsTrue(App().Navigating));
    EXPECT_EQ(Outcome(), "00101; shown text 21");
    EXPECT_EQ(Rows().count(), 2);

    App().SingleInstanceMutex = system.createMutex("Orvex", true).handle;
    EXPECT_THROW(frmresults().Image4.Click(), ui::ProgramEnded);
    EXPECT_FALSE(IsTrue(App().Navigating));
    EXPECT_FALSE(system.releaseMutex(App().SingleInstanceMutex));  // no longer ours
}

TEST_F(ScanDriverTest, OnlyFixedAndRootlessDrivesAreWalked) {
    files.addDrive("F:\\", platform::drivetype::kRemovable);
    files.addDrive("G:\\", platform::drivetype::kCdRom);
    files.addDrive("H:\\", platform::drivetype::kNoRoot);
    for (const char* path : {"E:\\bad.exe", "F:\\bad.exe", "G:\\bad.exe", "H:\\bad.exe"})
        files.addFile(path, kBadBytes);
    files.remove("C:\\Users\\a\\bad.exe");
    files.remove("C:\\Users\\b\\named.exe");
    Scan();
    EXPECT_EQ(Findings(),
              (std::vector<std::string>{"HashThreat|FileSystem|Confirmed|e:\\|bad.exe",
                                        "HashThreat|FileSystem|Confirmed|h:\\|bad.exe"}));
    EXPECT_TRUE(LastScanWritten());
}

TEST_F(ScanDriverTest, ThePageSendsItselfAwayWhenItLoadsAfterAStop) {
    App().StopRequested = VbTrue;
    frmscan();
    EXPECT_FALSE(ui::IsLoaded<FrmScan>());
    // A scan started while the stop is pending finds no page and does not run.
    frmscan().ScanItems();
    EXPECT_EQ(App().ItemsScanned, 0);
    EXPECT_FALSE(LastScanWritten());
}

// Past the signed tick range the wait fails at once and is logged.
TEST_F(ScanDriverTest, WaitYieldsUntilTheTicksHavePassed) {
    system.setTickCount(5000);
    int before = host.Yields();
    Wait(2);
    EXPECT_GE(host.Yields() - before, 2000);
    EXPECT_LE(host.Yields() - before, 2002);

    system.setTickCount(0x7FFFFFF0u);
    before = host.Yields();
    Wait(1);
    EXPECT_EQ(host.Yields(), before);
    EXPECT_NE(ErrorLog(), "");
}

}  // namespace
}  // namespace orvex
