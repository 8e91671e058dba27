// ScanRunner_test.cpp: the command line's scan end to end on a planted tree: definitions
// compiled as `orvex defs compile` compiles them, the data and program folders, the exit
// codes, the log it leaves and the findings table.
#include "app/ScanRunner.h"

#include <string>
#include <vector>

#include "core/AppState.h"
#include "platform/Md5.h"
#include "platform/RegistryHelper.h"
#include "scan/ScanFixture.h"

namespace orvex {
namespace {

using platform::Hive;

const std::string kBadBytes = "bytes of a known bad file";

class ScanRunnerTest : public testing::ScanTest {
  protected:
    ScanRunnerTest() {
        App() = AppState{};
        files.addFile(
            "C:\\defs\\ovsdef.dat",
            CompileDefinitionSource("Ver=11/22/2026\r\n[MD5]\r\n" + platform::Md5Hex(kBadBytes) +
                                    "|HashThreat\r\n[End]\r\n[Files]\r\n"
                                    "NameThreat|named.exe\r\nOther|other.exe\r\n[End]\r\n"
                                    "[Exclusion]\r\nnamed.exe|namethreat|||0|1\r\n"
                                    "[End]\r\n"));
        files.addFile("C:\\tree\\a\\bad.exe", kBadBytes);
        files.addFile("C:\\tree\\b\\named.exe", "x");
        files.addFile("C:\\elsewhere\\bad.exe", kBadBytes);
        files.addFolder("C:\\app");
        request.appPath = "C:\\app\\";
        request.dataFolder = "C:\\defs";
        request.folder = "C:\\tree\\";
    }

    HeadlessScanRequest request;
};

TEST_F(ScanRunnerTest, ThreatsBelowTheFolderGiveExitCodeOneAndALog) {
    int progressCalls = 0;
    request.progress = [&](std::string_view, std::int32_t) { ++progressCalls; };
    const HeadlessScanResult result = RunHeadlessScan(request);
    EXPECT_EQ(FindingsTable(result.findings),
              "NAME        CATEGORY    LEVEL      LOCATION    ITEM\n"
              "HashThreat  FileSystem  Confirmed  C:\\tree\\a\\  bad.exe\n"
              "NameThreat  FileSystem  Confirmed  C:\\tree\\b\\  named.exe\n");
    EXPECT_EQ(std::to_string(result.exitCode) + " " + std::to_string(result.threats) + " " +
                  App().AppPath + " " + App().DataFolder,
              "1 2 C:\\app C:\\defs\\");
    EXPECT_GT(files.length("C:\\app\\Logged.txt"), 0u);
    EXPECT_GT(progressCalls, 0);
}

// The data folder comes from the registry when not given; without a folder every drive is
// walked.
TEST_F(ScanRunnerTest, WithoutFoldersTheRegistryAndEveryDriveServe) {
    request.dataFolder.clear();
    request.folder.clear();
    registry.setString(Hive::LocalMachine, "Software\\Norvani\\Orvex Sentry", "DataPath",
                       "C:\\defs");
    const HeadlessScanResult result = RunHeadlessScan(request);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.findings.size(), 3u);
    EXPECT_EQ(App().DataFolder, "C:\\defs\\");
}

TEST_F(ScanRunnerTest, TheTableLinesUpItsColumns) {
    std::vector<ScumRow> rows(2);
    rows[0] = {"Long threat name", "FileSystem", "Confirmed", "C:\\x\\", "a.exe"};
    rows[1] = {"T", "Registry(Value)", "Suspect", "HKEY_USERS\\k|v", "text"};
    EXPECT_EQ(FindingsTable(rows),
              "NAME              CATEGORY         LEVEL      LOCATION        ITEM\n"
              "Long threat name  FileSystem       Confirmed  C:\\x\\           a.exe\n"
              "T                 Registry(Value)  Suspect    HKEY_USERS\\k|v  text\n");
    EXPECT_EQ(FindingsTable({}), "No threats found.\n");
}

}  // namespace
}  // namespace orvex
