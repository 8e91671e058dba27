// StartupScan_test.cpp: Run values judged by name, by file and by digest on both roots,
// Uninstall subkeys by name, SharedDlls entries by digest and by bare name, and stops.
#include "scan/StartupScan.h"

#include <tuple>

#include "logs/LogFixture.h"
#include "pages/ScanPage.h"
#include "platform/Md5.h"
#include "scan/IndexPlanting.h"

namespace orvex {
namespace {

using platform::Hive;

const std::string kRun = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
const std::string kHklmRun = "HKEY_LOCAL_MACHINE\\" + kRun;
const std::string kHkcuRun = "HKEY_CURRENT_USER\\" + kRun;
const std::string kUninstall = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
const std::string kShared = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\SharedDlls";

// location, item, threat
using Row = std::tuple<std::string, std::string, std::string>;

class StartupScanTest : public testing::LogTest {
  protected:
    static std::vector<Row> Found() {
        std::vector<Row> rows;
        for (const ScumRow& row : ScumListOfRun())
            rows.emplace_back(row.location, row.item, row.name);
        return rows;
    }

    static void Lines(TextTable& table, std::initializer_list<std::string> lines) {
        for (const auto& line : lines)
            AppendLine(table, line);
    }

    void RunValue(Hive root, const std::string& name, const std::string& data) {
        registry.setString(root, kRun, name, data);
    }

    // A file whose digest the definitions list under `threat`.
    void ListedFile(const std::string& path, const std::string& threat) {
        files.addFile(path, "payload of " + path);
        hashes_.emplace_back(platform::Md5Hex("payload of " + path), threat);
        testing::PlantDigests(hashes_);
    }

  private:
    std::vector<std::pair<std::string, std::string>> hashes_;
};

// By value name, by threat name, by the file of a quoted command with a switch (the line
// found it first, so the digest walk is not taken), and a rundll32 entry by its DLL's digest.
TEST_F(StartupScanTest, RunValuesAreJudgedByNameFileAndDigestOnEitherRoot) {
    ListedFile("C:\\a b\\x.exe", "HashThreat");
    ListedFile("c:\\x\\y.dll", "DllThreat");
    RunValue(Hive::LocalMachine, "Updater", "c:\\gone\\upd.exe");
    RunValue(Hive::LocalMachine, "Runner", "\"C:\\a b\\x.exe\" /s");
    RunValue(Hive::CurrentUser, "BadThing", "");
    RunValue(Hive::CurrentUser, "Harmless", "c:\\ok.exe");
    RunValue(Hive::CurrentUser, "Loader", "RUNDLL32.EXE c:\\x\\y.dll,Start");
    Lines(Definitions().StartupDefs,
          {"Spy|updater", "no bar here", "BadThing|other.exe", "FileThreat|X.EXE"});
    StartupRegistry();
    EXPECT_EQ(Found(), (std::vector<Row>{{kHklmRun, "Updater", "Spy"},
                                         {kHklmRun, "Runner", "FileThreat"},
                                         {kHkcuRun, "BadThing", "BadThing"},
                                         {kHkcuRun, "Loader", "DllThreat"}}));
    EXPECT_EQ(App().ItemsScanned, 5);
    EXPECT_EQ(frmscan().lbl3.Caption, "Files checked: 5");
}

TEST_F(StartupScanTest, RejectedFileNameHitsAndSlashedPathsFindNothing) {
    files.addFile("C:\\x.exe", "clean");
    RunValue(Hive::LocalMachine, "Runner", "C:\\x.exe");
    ListedFile("C:\\a/b\\x.exe", "HashThreat");
    RunValue(Hive::LocalMachine, "Slashed", "C:\\a/b\\x.exe");
    Lines(Definitions().StartupDefs, {"Runner|x.exe"});
    StartupRegistry();
    EXPECT_TRUE(Found().empty());
}

TEST_F(StartupScanTest, ShortNamesAreLengthenedPerRootInItsOwnOrder) {
    ListedFile("C:\\Program Files\\LongFileName.exe", "HashThreat");
    const std::string shortName = files.shortPath("C:\\Program Files\\LongFileName.exe");
    ASSERT_NE(shortName.find('~'), std::string::npos);
    Lines(Definitions().StartupDefs, {"NameThreat|longfilename.exe"});
    // Quoted: the first root tries the long form of the quoted text, which fails, so only
    // the digest knows the file; the second root unquotes first and sees the long name.
    RunValue(Hive::LocalMachine, "Quoted", "\"" + shortName + "\"");
    RunValue(Hive::LocalMachine, "Bare", shortName);
    RunValue(Hive::CurrentUser, "Quoted", "\"" + shortName + "\"");
    StartupRegistry();
    EXPECT_EQ(Found(), (std::vector<Row>{{kHklmRun, "Quoted", "HashThreat"},
                                         {kHklmRun, "Bare", "NameThreat"},
                                         {kHkcuRun, "Quoted", "NameThreat"}}));
}

TEST_F(StartupScanTest, EveryMatchingLineReportsAndTheDigestWalkWaitsForNone) {
    ListedFile("C:\\t\\evil.exe", "HashThreat");
    RunValue(Hive::LocalMachine, "Evil", "C:\\t\\evil.exe");
    Lines(Definitions().StartupDefs, {"One|evil", "Two|other", "Evil|x"});
    StartupRegistry();
    EXPECT_EQ(Found(), (std::vector<Row>{{kHklmRun, "Evil", "One"}, {kHklmRun, "Evil", "Evil"}}));
}

TEST_F(StartupScanTest, OddDataTypesAndNamesNeverStopTheWalk) {
    registry.setDword(Hive::LocalMachine, kRun, "Number", 7);
    registry.setBinary(Hive::LocalMachine, kRun, "Bytes", std::string("\x01\x00\xff", 3));
    registry.setString(Hive::LocalMachine, kRun, "/", "/");
    registry.setString(Hive::LocalMachine, kRun, "\xC9t\xE9", "~~~");
    RunValue(Hive::CurrentUser, "Last", "c:\\nothing.exe");
    Lines(Definitions().StartupDefs, {"Accent|\xE9T\xC9", "LastOne|last"});
    StartupRegistry();
    EXPECT_EQ(Found(),
              (std::vector<Row>{{kHklmRun, "\xC9t\xE9", "Accent"}, {kHkcuRun, "Last", "LastOne"}}));
    EXPECT_EQ(App().ItemsScanned, 5);
}

// A stop ends each walk at once: in the second root's walk of the Run values, in the
// definition walk of the Uninstall subkeys and in the name walk of SharedDlls. The Run and
// SharedDlls scans clear a stop asked before they start.
TEST_F(StartupScanTest, AStopInAnyWalkEndsTheScanAndAnEarlierStopIsCleared) {
    RunValue(Hive::LocalMachine, "A", "");
    RunValue(Hive::CurrentUser, "C", "");
    RunValue(Hive::CurrentUser, "D", "");
    Lines(Definitions().StartupDefs, {"T|a", "T|c", "T|d"});
    registry.addKey(Hive::LocalMachine, kUninstall + "\\First");
    registry.addKey(Hive::LocalMachine, kUninstall + "\\Second");
    Lines(Definitions().AddRemoveDefs, {"T|first", "T|second"});
    registry.setDword(Hive::LocalMachine, kShared, "C:\\a.dll", 1);
    registry.setDword(Hive::LocalMachine, kShared, "C:\\b.dll", 1);
    testing::PlantNames({{"a.dll", "A"}, {"b.dll", "B"}});
    const struct {
        void (*scan)();
        int stopAt;  // yields 1 to 4 are A's and its three lines; 5 is C's, 6 C's first line
        std::vector<Row> found;
        int scanned;
        VbBool stoppedBefore;
    } cases[] = {{StartupRegistry, 6, {{kHklmRun, "A", "T"}}, 2, VbTrue},
                 {AddRemoveRegistry, 1, {}, 1, VbFalse},
                 {SharedDLLRegistry, 1, {}, 1, VbTrue}};
    for (const auto& c : cases) {
        ScumListOfRun().clear();
        App().ItemsScanned = 0;
        App().StopRequested = c.stoppedBefore;
        host.AtYield(host.Yields() + c.stopAt, [] { App().StopRequested = VbTrue; });
        c.scan();
        EXPECT_EQ(Found(), c.found) << c.stopAt;
        EXPECT_EQ(App().ItemsScanned, c.scanned) << c.stopAt;
    }
}

TEST_F(StartupScanTest, UninstallSubkeysAreFoundUnderEachListingThreat) {
    registry.addKey(Hive::LocalMachine, kUninstall + "\\BadToolbar");
    registry.addKey(Hive::LocalMachine, kUninstall + "\\Editor");
    Lines(Definitions().AddRemoveDefs, {"One|badtoolbar", "bare line", "Two|BadToolbar"});
    AddRemoveRegistry();
    const std::string location = "HKEY_LOCAL_MACHINE\\" + kUninstall;
    EXPECT_EQ(Found(),
              (std::vector<Row>{{location, "badtoolbar", "One"}, {location, "BadToolbar", "Two"}}));
    EXPECT_EQ(App().ItemsScanned, 2);
    EXPECT_EQ(frmscan().lbl3.Caption, "Files checked: 2");
}

TEST_F(StartupScanTest, SharedDllsByDigestThenByBareName) {
    ListedFile("C:\\Win\\hashed.dll", "ByHash");
    registry.setDword(Hive::LocalMachine, kShared, "C:\\Win\\hashed.dll", 1);
    registry.setDword(Hive::LocalMachine, kShared, "C:\\Gone\\NAMED.dll", 1);
    registry.setDword(Hive::LocalMachine, kShared, "C:\\Win\\clean.dll", 1);
    registry.setDword(Hive::LocalMachine, kShared, "C:\\Win\\", 1);
    testing::PlantNames(
        {{"hashed.dll", "ByName"}, {"named.dll", "NameOne"}, {"named.dll", "NameTwo"}});
    SharedDLLRegistry();
    const std::string location = "HKEY_LOCAL_MACHINE\\" + kShared;
    // No [Exclusion] line holds these names: the listed name alone is the finding.
    EXPECT_EQ(Found(), (std::vector<Row>{{location, "C:\\Win\\hashed.dll", "ByHash"},
                                         {location, "C:\\Gone\\NAMED.dll", "NameOne"},
                                         {location, "C:\\Gone\\NAMED.dll", "NameTwo"}}));
    EXPECT_EQ(App().ItemsScanned, 4);
}

}  // namespace
}  // namespace orvex
