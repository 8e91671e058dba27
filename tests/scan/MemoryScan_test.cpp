// MemoryScan_test.cpp: the Windows family table, the process list in each family's form,
// the scan of running images by digest and by name, ending the processes of checked rows,
// and the start-up removal of the surveillance agent.
#include "scan/MemoryScan.h"

#include <tuple>

#include "logs/LogFile.h"
#include "platform/Md5.h"
#include "scan/IndexPlanting.h"
#include "scan/RunProc.h"
#include "scan/ScanFixture.h"

namespace orvex {
namespace {

constexpr const char* kMemory = "Memory Resident";

class MemoryScanTest : public testing::ScanTest {
  protected:
    MemoryScanTest() { files.addFolder("C:\\Apps"); }

    // A running process whose image lies on the disk with these bytes.
    std::uint32_t Run(const std::string& path, const std::string& bytes = "image") {
        files.addFile(path, bytes);
        return processes.addProcess(path);
    }

    // The digest index for images of these bytes.
    static void Digests(const testing::ThreatPairs& bytesAndThreat) {
        testing::ThreatPairs hashes;
        for (const auto& [bytes, threat] : bytesAndThreat)
            hashes.emplace_back(platform::Md5Hex(bytes), threat);
        testing::PlantDigests(hashes);
    }
    // File names and their threats, each with an [Exclusion] line giving `code`.
    static void Names(std::vector<std::tuple<std::string, std::string, int>> entries) {
        testing::ThreatPairs names;
        TextTable& exclusions = Definitions().ExclusionDefs;
        for (const auto& [file, threat, code] : entries) {
            names.emplace_back(file, threat);
            AppendLine(exclusions, file + "||||" + std::to_string(code) + "|0");
        }
        testing::PlantNames(names);
        std::sort(exclusions.Items.begin(), exclusions.Items.end());
    }

    static void Scan(VbBool killMode = VbFalse) { ScanMemory(killMode); }
    static void Check(const std::string& threat, const std::string& item,
                      const std::string& folder = "C:\\Apps\\") {
        ScumListDetailsAdd(threat, kMemory, folder, item, "");
        ScumListOfRun().setChecked(ScumListOfRun().count(), true);
    }
    // Whether each process still runs.
    std::vector<bool> Running(std::initializer_list<std::uint32_t> ids) {
        std::vector<bool> out;
        for (std::uint32_t id : ids)
            out.push_back(processes.running(id));
        return out;
    }

    std::vector<std::string> LogRecords() {
        std::vector<std::string> records;
        if (files.exists(LoggedTxtPath()))
            ReadScanLog(LoggedTxtPath(), [&](const std::string& r) { records.push_back(r); });
        return records;
    }
};

// ---------------------------------------------------------------------------------------
// Family table and process list

// A few families, and the fallback for versions the table does not know.
TEST_F(MemoryScanTest, FamilyFromPlatformIdAndVersion) {
    std::vector<int> families;
    for (const auto& [id, major, minor] : {std::tuple(1, 4, 90), {2, 5, 2}, {2, 6, 0}}) {
        processes.setOsVersion(id, major, minor);
        families.push_back(clsRunProc().OS());
    }
    processes.failOsVersion();
    families.push_back(clsRunProc().OS());
    EXPECT_EQ(families, (std::vector<int>{4, 5, oskind::kUnknown, oskind::kUnknown}));
}

TEST_F(MemoryScanTest, NtListGivesIdAndTrimmedPathAndLeavesOutUnreadableProcesses) {
    processes.addProcess("", "System", 4);
    processes.addProcess("  C:\\Apps\\a.exe ", "", 200);
    processes.addProcess("C:\\Apps\\b.exe", "", 204);
    EXPECT_EQ(clsRunProc().RunningProcs(),
              (std::vector<std::string>{"200|C:\\Apps\\a.exe", "204|C:\\Apps\\b.exe"}));

    processes.setOsVersion(2, 4, 0);
    EXPECT_EQ(clsRunProc().RunningProcs().size(), 2u);
    processes.setOsVersion(2, 6, 1);
    EXPECT_TRUE(clsRunProc().RunningProcs().empty());
    // NT 3.51 has a family of its own but no list.
    processes.setOsVersion(2, 3, 51);
    EXPECT_TRUE(clsRunProc().RunningProcs().empty());
}

// ---------------------------------------------------------------------------------------
// Scan mode

// A digest hit is confirmed and decides before the name; the name pass needs an exclusion
// code of 0 or 1 and runs for images gone from the disk too.
TEST_F(MemoryScanTest, DigestThenNameWithItsExclusionCode) {
    Run("C:\\Apps\\first.exe", "evil bytes");
    Run("C:\\Apps\\Evil.EXE", "evil bytes");
    processes.addProcess("C:\\Apps\\gone.exe");
    Run("C:\\Apps\\suspect.exe");
    Run("C:\\Apps\\unknown.exe");
    Digests({{"evil bytes", "Evil Agent"}});
    Names({{"evil.exe", "Name Threat", 0},
           {"gone.exe", "Gone Threat", 1},
           {"suspect.exe", "Suspect Threat", 2}});
    Scan();
    EXPECT_EQ(Findings(), (std::vector<std::string>{
                              "Evil Agent|Memory Resident|Confirmed|C:\\Apps\\|evil.exe",
                              "Gone Threat|Memory Resident|Confirmed|C:\\Apps\\|gone.exe"}));
}

TEST_F(MemoryScanTest, FirstListedProcessIsNeverTestedAndUnreadableOnesDoNotCount) {
    processes.addProcess("", "System", 4);  // not listed: the skip falls on first.exe
    Run("C:\\Apps\\first.exe", "evil bytes");
    Run("C:\\Apps\\second.exe", "evil bytes");
    Digests({{"evil bytes", "Evil Agent"}});
    Scan();
    ASSERT_EQ(Rows().count(), 1);
    EXPECT_EQ(Rows().row(1).item, "second.exe");
}

TEST_F(MemoryScanTest, UnknownFamilyLogsTheStartAndFindsNothing) {
    processes.setOsVersion(2, 6, 1);
    Run("C:\\Apps\\first.exe");
    Run("C:\\Apps\\evil.exe", "evil bytes");
    Digests({{"evil bytes", "Evil Agent"}});
    Scan();
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(LogRecords().size(), 1u);
}

TEST_F(MemoryScanTest, StopInTheDigestPassEndsTheScan) {
    Run("C:\\Apps\\first.exe");
    Run("C:\\Apps\\a.exe", "a bytes");
    Run("C:\\Apps\\b.exe", "b bytes");
    Digests({{"a bytes", "A"}, {"b bytes", "B"}});
    host.AtYield(1, [] { App().StopRequested = VbTrue; });
    Scan();
    EXPECT_TRUE(Rows().empty());
}

// ---------------------------------------------------------------------------------------
// Kill mode

TEST_F(MemoryScanTest, KillModeEndsTheProcessesOfCheckedMemoryRowsById) {
    const auto first = Run("C:\\Apps\\evil.exe");
    const auto evil = Run("C:\\Apps\\evil.exe");
    const auto kept = Run("C:\\Apps\\kept.exe");
    const auto other = Run("C:\\Apps\\other.exe");
    Check("Evil", "evil.exe");
    Check("Kept", "kept.exe");
    ScumListOfRun().setChecked(2, false);
    Check("Other", "other.exe");
    const auto onDisk = Run("C:\\Apps\\disk.exe");  // a checked row of another stage
    ScumListDetailsAdd("Disk", "FileSystem", "C:\\Apps\\", "disk.exe", "");
    ScumListOfRun().setChecked(ScumListOfRun().count(), true);
    // A process refusing to end stops nothing.
    const auto guarded = Run("C:\\Apps\\guarded.exe");
    const auto afterGuarded = Run("C:\\Apps\\bad.exe");
    processes.protect(guarded);
    Check("Guarded", "guarded.exe");
    Check("Bad", "bad.exe");
    Scan(VbTrue);
    // The first entry is never ended.
    EXPECT_EQ(Running({first, evil, kept, other, onDisk, guarded, afterGuarded}),
              (std::vector<bool>{true, false, true, false, true, true, false}));
    EXPECT_TRUE(LogRecords().empty());  // kill mode logs no start
}

// The agent on 9x is ended by name.
TEST_F(MemoryScanTest, KillModeAndTheAgentOnNineXEndEveryProcessWhosePathEndsInTheName) {
    processes.setOsVersion(1, 4, 10);
    auto run9x = [&](const std::string& path) { return processes.addProcess(path, path); };
    const auto first = run9x("C:\\WINDOWS\\EXPLORER.EXE");
    const auto app = run9x("C:\\APPS\\APP.EXE");
    const auto myApp = run9x("C:\\OTHER\\MYAPP.EXE");
    const auto clean = run9x("C:\\APPS\\CLEAN.EXE");
    const auto agent = run9x("C:\\SPYAGENT\\SA.EXE");
    Check("App", "app.exe");
    Scan(VbTrue);
    EXPECT_EQ(Running({first, app, myApp, clean, agent}),
              (std::vector<bool>{true, false, false, true, true}));
    RemoveSurveillanceAgent();
    EXPECT_FALSE(processes.running(agent));
}

TEST_F(MemoryScanTest, KillAppReportsWhetherAnyMatchedAndIgnoresAnEmptyName) {
    const auto app = processes.addProcess("C:\\Apps\\App.exe");
    std::vector<bool> foundAndRunning;
    for (const char* name : {"none.exe", "", "APP.EXE"}) {
        bool found = true;
        clsRunProc().KillApp(name, found);
        foundAndRunning.insert(foundAndRunning.end(), {found, processes.running(app)});
    }
    EXPECT_EQ(foundAndRunning, (std::vector<bool>{false, true, false, true, true, false}));
}

// ---------------------------------------------------------------------------------------
// Surveillance agent

TEST_F(MemoryScanTest, AgentIsKnownByEitherDigestOrElseByItsFolder) {
    EXPECT_EQ((std::vector<bool>{
                  IsSurveillanceAgentImage("29a38b50b102abc3b818100fc836868d", "C:\\Apps\\"),
                  IsSurveillanceAgentImage("EED8E968A40F91E20800FEE118D0B718", "C:\\Apps\\"),
                  IsSurveillanceAgentImage("", "C:\\Program Files\\SpyAgent4\\"),
                  IsSurveillanceAgentImage("", "C:\\Program Files\\Spy Agent\\")}),
              (std::vector<bool>{true, false, true, false}));
}

TEST_F(MemoryScanTest, AgentInAFolderNamedAfterItIsEndedAndLoggedWithoutARow) {
    files.addFolder("C:\\Program Files\\SpyAgent");
    const auto first = Run("C:\\Program Files\\SpyAgent\\first.exe");  // passed over
    const auto agent = Run("C:\\Program Files\\SpyAgent\\sa.exe");
    const auto gone = processes.addProcess("C:\\Program Files\\SpyAgent\\old.exe");
    const auto other = Run("C:\\Apps\\editor.exe");
    RemoveSurveillanceAgent();
    // The agent whose image is gone from the disk is known by its folder.
    EXPECT_EQ(Running({first, agent, gone, other}), (std::vector<bool>{true, false, false, true}));
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(LogRecords().size(), 2u);
}

}  // namespace
}  // namespace orvex
