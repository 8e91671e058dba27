// RegistryScan_test.cpp: the registry table walk (first line passed over, field counts,
// root names), value and key tests with the shapes of their findings, the stop button
// during the stage, and removeChr34.
#include "scan/RegistryScan.h"

#include "core/Config.h"
#include "pages/ScanPage.h"
#include "scan/ScanFixture.h"

namespace orvex {
namespace {

using platform::Hive;

constexpr std::uint32_t kHklm = 0x80000002u;
constexpr std::uint32_t kPerformanceData = 0x80000004u;

class RegistryScanTest : public testing::ScanTest {
  protected:
    RegistryScanTest() { LngArray()[379] = "Registry items: "; }

    static void RegistryDefs(const std::vector<std::string>& lines) {
        for (const auto& line : lines)
            AppendLine(Definitions().RegistryDefs, line);
    }
};

// ---------------------------------------------------------------------------------------
// Root names

TEST_F(RegistryScanTest, RootNamesReadExactlyAndPerformanceDataIsNeverWritten) {
    EXPECT_EQ((std::vector<std::uint32_t>{RootHandleFromName("HKEY_PERFORMANCE_DATA"),
                                          RootHandleFromName("hkey_local_machine"),
                                          RootHandleFromName("HKLM")}),
              (std::vector<std::uint32_t>{kPerformanceData, 0, 0}));
    EXPECT_EQ(RootNameFromHandle(kHklm), "HKEY_LOCAL_MACHINE");
    EXPECT_EQ(RootNameFromHandle(kPerformanceData) + RootNameFromHandle(0), "");
}

// ---------------------------------------------------------------------------------------
// Key tests

// A key hit gives the parent with its backslash and the last component; nothing is found
// without a root name, a key or a backslash.
TEST_F(RegistryScanTest, KeyTestsAndTheirFindings) {
    registry.addKey(Hive::LocalMachine, "Software\\a\\b");
    RegistryCheck(kHklm, "Software\\a\\b", "", "Threat");
    RegistryCheck(kHklm, "Software\\a\\missing", "", "Missing");
    registry.addKey(Hive::PerformanceData, "Software\\x");
    registry.addKey(Hive::LocalMachine, "Toplevel");
    RegistryCheck(kPerformanceData, "Software\\x", "", "Perf");
    RegistryCheck(0x80000000u, "", "", "TSADBOT");
    RegistryCheck(kHklm, "Toplevel", "", "NoBackslash");  // fails in the cut, handled
    RegistryCheck(0, "Software\\x", "", "NoRoot");
    RegistryCheck(kHklm, "Software\\None", "evil", "MissingKeyOfAValueTest");
    // A value hit on performance data writes a location starting with a backslash.
    registry.setString(Hive::PerformanceData, "Counters", "x", "evil");
    RegistryCheck(kPerformanceData, "Counters", "evil", "Perf");
    EXPECT_EQ(Findings(), (std::vector<std::string>{
                              "Threat|Registry(Key)|Confirmed|HKEY_LOCAL_MACHINE\\Software\\a\\|b",
                              "Perf|Registry(Value)|Confirmed|\\Counters|x|evil"}));
}

// ---------------------------------------------------------------------------------------
// Value tests

TEST_F(RegistryScanTest, ValueTestMatchesDataOrNameIgnoringCaseOneRowPerValue) {
    const char* key = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    registry.setString(Hive::LocalMachine, key, "Updater", "C:\\Evil\\EVILBAR.exe /q");
    registry.setString(Hive::LocalMachine, key, "EvilBar Helper", "C:\\clean.exe");
    registry.setString(Hive::LocalMachine, key, "Clean", "C:\\clean.exe");
    registry.setDword(Hive::LocalMachine, key, "Count", 7);
    registry.setBinary(Hive::LocalMachine, key, "Blob", std::string("\0evilbar\xff", 9));
    registry.setValue(Hive::LocalMachine, key, "Empty", platform::regtype::kSz, "");
    RegistryCheck(kHklm, key, "evilbar", "EvilBar");
    const std::string base = std::string("HKEY_LOCAL_MACHINE\\") + key + "|";
    EXPECT_EQ(Findings(),
              (std::vector<std::string>{
                  "EvilBar|Registry(Value)|Confirmed|" + base + "Updater|evilbar",
                  "EvilBar|Registry(Value)|Confirmed|" + base + "EvilBar Helper|evilbar",
                  "EvilBar|Registry(Value)|Confirmed|" + base + "Blob|evilbar"}));
}

// ---------------------------------------------------------------------------------------
// The table walk

TEST_F(RegistryScanTest, TableWalkPassesOverTheFirstLineAndCountsFields) {
    registry.addKey(Hive::LocalMachine, "Software\\first");
    registry.addKey(Hive::LocalMachine, "Software\\x");
    registry.setString(Hive::CurrentUser, "Software\\v", "name", "has evil inside");
    RegistryDefs({
        "First|HKEY_LOCAL_MACHINE|Software\\first",
        "Five|HKEY_LOCAL_MACHINE|Software\\x|y|z",
        "Four|HKEY_CURRENT_USER|Software\\v|EVIL",
        "",
        "Kept|HKLM|Software\\x",  // unknown root: the handle of the line before
        "Three|HKEY_LOCAL_MACHINE|Software\\missing",
    });
    ScumRegistry();
    EXPECT_EQ(Findings(),
              (std::vector<std::string>{
                  "Five|Registry(Key)|Confirmed|HKEY_LOCAL_MACHINE\\Software\\|x",
                  "Four|Registry(Value)|Confirmed|HKEY_CURRENT_USER\\Software\\v|name|EVIL"}));
}

TEST_F(RegistryScanTest, StageStartsAfreshAndCountsEveryLineAfterTheFirst) {
    App().StopRequested = VbTrue;
    App().ItemsScanned = 10;
    RegistryDefs({"a|HKEY_LOCAL_MACHINE|Software\\a", "b|HKEY_LOCAL_MACHINE|Software\\b"});
    ScumRegistry();
    EXPECT_EQ(App().StopRequested, VbFalse);
    // At least the CLSID table's empty element, line b and the registry table's empty
    // element; the special scans may count items of their own.
    EXPECT_GE(App().ItemsScanned, 10 + 3);
    EXPECT_EQ(frmscan().lbl3.Caption, "Registry items: " + std::to_string(App().ItemsScanned));
}

TEST_F(RegistryScanTest, StopDuringTheTableWalkLeavesTheRestUntested) {
    for (const char* key : {"Software\\a", "Software\\b", "Software\\c", "Software\\d"})
        registry.addKey(Hive::LocalMachine, key);
    RegistryDefs({"", "A|HKEY_LOCAL_MACHINE|Software\\a", "B|HKEY_LOCAL_MACHINE|Software\\b",
                  "C|HKEY_LOCAL_MACHINE|Software\\c", "D|HKEY_LOCAL_MACHINE|Software\\d"});
    // The stop is tested before a line's yields: pressed while C is read, C is still
    // tested and D is not.
    host.OnEveryYield([&](int) {
        if (Rows().count() == 2) App().StopRequested = VbTrue;
    });
    ScumRegistry();
    ASSERT_EQ(Rows().count(), 3);
    EXPECT_EQ(Rows().row(3).name, "C");
    EXPECT_EQ(App().StopRequested, VbTrue);
}

TEST_F(RegistryScanTest, HijackedDomainIsTheFirstThingTheStageLooksAt) {
    registry.setString(Hive::LocalMachine, "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters",
                       "Domain", config::kDomainHijackNameA);
    host.Answer(ui::msgbox::kNo);
    bool dialogBeforeTable = false;
    registry.addKey(Hive::LocalMachine, "Software\\a");
    RegistryDefs({"", "A|HKEY_LOCAL_MACHINE|Software\\a"});
    host.OnEveryYield([&](int) {
        if (!dialogBeforeTable) dialogBeforeTable = host.Messages().size() == 1;
    });
    ScumRegistry();
    EXPECT_TRUE(dialogBeforeTable);
    EXPECT_EQ(Rows().count(), 1);
}

// ---------------------------------------------------------------------------------------
// removeChr34

TEST_F(RegistryScanTest, RemoveChr34DropsOneQuoteAtEachEndWhenPresent) {
    EXPECT_EQ((std::vector<std::string>{
                  removeChr34("\"C:\\a b\\x.exe\""), removeChr34("\"C:\\x.exe\" /run"),
                  removeChr34("C:\\x.exe\""), removeChr34("\"\"x\"\""), removeChr34("\"")}),
              (std::vector<std::string>{"C:\\a b\\x.exe", "C:\\x.exe\" /run", "C:\\x.exe", "\"x\"",
                                        "\""}));
}

}  // namespace
}  // namespace orvex
