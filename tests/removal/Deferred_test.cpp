// Deferred_test.cpp: WipeFile's few overwritten bytes, its handling of a file in use on each
// Windows family, the WININIT.INI copy, and the forced restart.
#include "removal/Deferred.h"

#include <optional>

#include "core/AppState.h"
#include "support/MemoryFixture.h"

namespace orvex {
namespace {

const std::string kSpy = "C:\\Program Files\\Spy Agent\\agent.dll";
const std::string kIni = "C:\\WINDOWS\\WININIT.INI";
const std::string kTemp = "C:\\WINDOWS\\WININIT.TEMP";

class DeferredTest : public testing::MemoryPlatformTest {
  protected:
    DeferredTest() {
        App().DataFolder = "C:\\Data\\";
        files.addFolder("C:\\Data");
        files.addFolder("C:\\WINDOWS");
    }
    std::string ShortSpy() { return files.shortPath(kSpy); }
};

// The file can be written but not deleted, so the overwritten bytes stay to be seen, and the
// failed delete is queued like any other.
TEST_F(DeferredTest, WipeFileOverwritesOneByteAtTheStartPerStarted4096) {
    const std::pair<std::size_t, std::size_t> sizes[] = {
        {0, 1}, {4095, 1}, {4096, 2}, {8191, 2}, {8192, 3}};
    for (const auto& [size, overwritten] : sizes) {
        const std::string original(size, 'x');
        files.addFile(kSpy, original);
        files.denyDelete(kSpy);
        EXPECT_TRUE(WipeFile(kSpy));
        std::string expected = original;
        expected.replace(0, overwritten, std::string(overwritten, '\xAA'));
        EXPECT_EQ(files.contents(kSpy), expected) << size << " bytes";
    }
    ASSERT_EQ(system.movesAtRestart().size(), std::size(sizes));
    EXPECT_EQ(system.movesAtRestart().back().from, kSpy);
}

TEST_F(DeferredTest, AReadOnlyFileIsDestroyedWithoutARestart) {
    files.addFile(kSpy, "MZ", platform::attr::kReadOnly | platform::attr::kHidden);
    EXPECT_TRUE(WipeFile(kSpy));
    EXPECT_FALSE(files.exists(kSpy));
    EXPECT_TRUE(system.movesAtRestart().empty());
    EXPECT_EQ(App().RestartNeeded, VbFalse);
}

struct LockedCase {
    const char* system;
    std::optional<platform::OsVersion> version;
    bool moveRefused;
    bool result;
    bool restart;
    bool moved;
    int errorTextReads;
    bool wininit;
};

void PrintTo(const LockedCase& c, std::ostream* out) {
    *out << c.system;
}

class WipeLockedFile : public DeferredTest, public ::testing::WithParamInterface<LockedCase> {};

TEST_P(WipeLockedFile, IsLeftForTheNextStartWhereTheSystemCan) {
    const LockedCase& c = GetParam();
    if (c.version)
        processes.setOsVersion(c.version->platformId, c.version->major, c.version->minor);
    else
        processes.failOsVersion();
    system.refuseMovesAtRestart(c.moveRefused);
    files.addFile(kSpy, "MZ");
    files.lock(kSpy);

    EXPECT_EQ(WipeFile(kSpy), c.result);
    EXPECT_EQ(App().RestartNeeded, c.restart ? VbTrue : VbFalse);
    EXPECT_EQ(files.contents(kSpy), "MZ");
    ASSERT_EQ(system.movesAtRestart().size(), c.moved ? 1u : 0u);
    if (c.moved) {
        EXPECT_EQ(system.movesAtRestart()[0].from, kSpy);
        EXPECT_EQ(system.movesAtRestart()[0].to, "");
        EXPECT_EQ(system.movesAtRestart()[0].flags, 5u);
    }
    EXPECT_EQ(system.errorTextReads(), c.errorTextReads);
    if (c.wininit)
        EXPECT_EQ(files.contents(kIni), "[rename]\r\nNUL=" + ShortSpy() + "\r\n");
    else
        EXPECT_FALSE(files.exists(kIni));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, WipeLockedFile,
    ::testing::Values(
        LockedCase{"Unknown", std::nullopt, false, false, false, false, 0, false},
        LockedCase{"Vista", platform::OsVersion{2, 6, 0}, false, false, false, false, 0, false},
        LockedCase{"Nt351", platform::OsVersion{2, 3, 51}, false, false, false, false, 0, false},
        LockedCase{"Nt4", platform::OsVersion{2, 4, 0}, false, true, true, true, 1, false},
        LockedCase{"Win95", platform::OsVersion{1, 4, 0}, false, false, true, false, 0, true},
        LockedCase{"Win98", platform::OsVersion{1, 4, 10}, false, false, true, false, 0, true},
        LockedCase{"Xp", platform::OsVersion{2, 5, 1}, false, true, true, true, 1, false},
        LockedCase{"XpRefused", platform::OsVersion{2, 5, 1}, true, true, true, false, 2, false}),
    [](const auto& info) { return std::string(info.param.system); });

struct IniCase {
    const char* name;
    std::optional<std::string> ini;
    std::optional<std::string> oldCopy;
    std::string expectedIni;  // "$" stands for the new line
    bool failureLogged;
};

void PrintTo(const IniCase& c, std::ostream* out) {
    *out << c.name;
}

class Create9xRebootCase : public DeferredTest, public ::testing::WithParamInterface<IniCase> {};

TEST_P(Create9xRebootCase, AppendsToTheCopyThatReplacesTheFile) {
    const IniCase& c = GetParam();
    if (c.ini) files.addFile(kIni, *c.ini);
    if (c.oldCopy) files.addFile(kTemp, *c.oldCopy);
    files.addFile(kSpy);
    Create9xReboot(kSpy, "NUL");

    std::string expected = c.expectedIni;
    const std::size_t mark = expected.find('$');
    if (mark != std::string::npos) expected.replace(mark, 1, "NUL=" + ShortSpy());
    EXPECT_EQ(files.contents(kIni), expected);
    EXPECT_EQ(ErrorLog().find("Create9xReboot") != std::string::npos, c.failureLogged);
}

INSTANTIATE_TEST_SUITE_P(
    Files, Create9xRebootCase,
    ::testing::Values(IniCase{"NewFile", std::nullopt, std::nullopt, "[rename]\r\n$\r\n", true},
                      IniCase{"NewFileLosesToAnOldCopy", std::nullopt, "[rename]\r\nold\r\n",
                              "[rename]\r\nold\r\n", false},
                      IniCase{"LandsInTheLastSection",
                              "[rename]\r\nNUL=C:\\A.DLL\r\n[other]\r\nk=v\r\n", std::nullopt,
                              "[rename]\r\nNUL=C:\\A.DLL\r\n[other]\r\nk=v\r\n$\r\n", false},
                      IniCase{"CommasSplitAndQuotesGo",
                              "[rename]\r\nNUL=C:\\A,B.DLL\r\n\"C:\\Q.DLL\"=\"C:\\R.DLL\"\r\n",
                              "stale", "[rename]\r\nNUL=C:\\A\r\nB.DLL\r\nC:\\Q.DLL\r\n$\r\n",
                              false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(DeferredTest, EveryRestartIsForcedAfterThePrivilegeIsEnabled) {
    for (const std::int32_t flags : {0, 2, 6})
        ExitWindows(flags);
    ASSERT_EQ(system.exitWindowsCalls().size(), 3u);
    EXPECT_EQ(system.exitWindowsCalls()[0].flags, 4u);
    EXPECT_EQ(system.exitWindowsCalls()[1].flags, 6u);
    EXPECT_EQ(system.exitWindowsCalls()[2].flags, 6u);
    EXPECT_TRUE(system.exitWindowsCalls()[0].privilegeEnabled);
}

}  // namespace
}  // namespace orvex
