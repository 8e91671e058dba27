// ErrorHandler_test.cpp: failure classification, the error log entry and the Procedure idiom.
#include "core/ErrorHandler.h"

#include "core/AppState.h"
#include "support/MemoryFixture.h"

namespace orvex {
namespace {

using enum Outcome;

const std::string kLog = "C:\\Data\\ovs.ph";
const std::string kTwentyBlanks(20, ' ');

// The lines under the outcome, as the default memory machine gives them.
std::string Tail(const std::string& computer = "ORVEXTEST", const std::string& user = "Tester") {
    return "Date-Time: 11/22/26 19:14:05     Workstation: " + computer + "     User: " + user +
           "\r\n\r\nVersion: " +
           ErrorLogVersionText(ORVEX_VERSION_MAJOR, ORVEX_VERSION_MINOR, ORVEX_VERSION_REVISION) +
           ", Definition Date: 11/01/2026\r\n\r\n---------------------------------------\r\n";
}

// The entry ErrorHandler writes: its first lines, then the tail.
std::string Entry(const std::string& head, const std::string& procedure, const std::string& module,
                  const std::string& outcome, const std::string& line = "") {
    return "Error [ " + head + "\r\nLocation:  Procedure ( " + procedure + " ) - Module ( " +
           module + " )" + (line.empty() ? "" : "\r\nLine number:  " + line) + kTwentyBlanks +
           "Outcome: " + outcome + "\r\n" + Tail();
}

class ErrorLogTest : public testing::MemoryPlatformTest {
  protected:
    ErrorLogTest() {
        files.addFolder("C:\\Data");
        App().DataFolder = "C:\\Data\\";
        App().DefinitionDate = "11/01/2026";
    }
    std::string Log() { return files.contents(kLog); }
};

// The tables, the fallback for numbers no table knows, and caller lists, which override the
// tables with the last hit winning; a list key carries its bars, so 530 and 5 are other numbers.
TEST(ErrorClassification, TablesFallbackAndCallerLists) {
    using Outcomes = std::vector<Outcome>;
    EXPECT_EQ((Outcomes{ClassifyFailure(53), ClassifyFailure(5), ClassifyFailure(20),
                        ClassifyFailure(91), ClassifyFailure(12345), ClassifyFailure(-5)}),
              (Outcomes{Resume, ResumeNext, GotoZero, ExitProject, ExitProject, ExitProject}));
    EXPECT_EQ((Outcomes{ClassifyFailure(53, {.resumeNext = "|9|53|"}),
                        ClassifyFailure(5, {.resumeAtLabel = "|5|"}),
                        ClassifyFailure(53, {.resume = "|53|", .exit = "|53|"}),
                        ClassifyFailure(53, {.resumeNext = "|53|", .gotoZero = "|53|"}),
                        ClassifyFailure(53, {.resumeNext = "|530|5|"})}),
              (Outcomes{ResumeNext, ResumeAtLabel, ExitProject, GotoZero, Resume}));
    EXPECT_EQ(OutcomeName(static_cast<Outcome>(99)), "");
    EXPECT_EQ(ErrorLogVersionText(1, 0, 7) + " " + ErrorLogVersionText(2, 3, 123),
              "1.0.07 2.3.123");
}

// Each entry overwrites the start of the log and leaves the older tail.
TEST_F(ErrorLogTest, EntriesWithAndWithoutLineNumberOverwriteTheStart) {
    const std::string older(2000, 'x');
    files.addFile(kLog, older);
    EXPECT_EQ(
        ErrorHandler(91, "Object variable or With block variable not set", 0, "frmmain", "actions"),
        ExitProject);
    const std::string first = Entry("91 ]:  Object variable or With block variable not set",
                                    "actions", "frmmain", "Exit Project");
    EXPECT_EQ(Log(), first + older.substr(first.size()));
    files.remove(kLog);
    ErrorHandler(53, "File not found", 120, "Module1", "LoadStaticDat");
    EXPECT_EQ(Log(), Entry("53 ]:  File not found", "LoadStaticDat", "Module1", "Resume", "120"));
    ErrorHandler(5, "Invalid procedure call or argument", 0, "frmscan", "ScanItems");
    EXPECT_TRUE(Log().starts_with(
        Entry("5 ]:  Invalid procedure call or argument", "ScanItems", "frmscan", "Resume Next")));
    // Line ends in the description are compacted too.
    ErrorHandler(1234, "first\r\n\r\n\r\n\r\nsecond", 0, "m", "p");
    EXPECT_TRUE(Log().starts_with("Error [ 1234 ]:  first\r\nsecond\r\nLocation:  "));
}

TEST_F(ErrorLogTest, MissingIdentityTexts) {
    system.setComputerName(std::nullopt);
    system.setUserName(std::nullopt);
    ErrorHandler(70, "Permission denied", 0, "m", "p");
    EXPECT_NE(Log().find(Tail("(Unknown)", "")), std::string::npos) << Log();

    system.setComputerName(std::string("DESK\0junk", 9));
    system.setUserName(std::string("ann\0\0\0", 6));
    ErrorHandler(70, "Permission denied", 0, "m", "p");
    EXPECT_NE(Log().find(Tail("DESK", "ann")), std::string::npos) << Log();
}

TEST_F(ErrorLogTest, FailedWriteIsLoggedUnderWriteErrorToLog) {
    files.failWrite(1, failure::kDiskFull);
    EXPECT_EQ(
        ErrorHandler(91, "Object variable or With block variable not set", 0, "frmmain", "actions"),
        ExitProject);
    // The caller acts on its own outcome, not on that of the failed write.
    EXPECT_EQ(ErrorOutcome, ExitProject);
    EXPECT_EQ(Log(), Entry("61 ]:  Disk full", "WriteErrorToLog", "modErrorHandler", "Resume"));
}

// Without a log, or without any platform, the handler still returns an outcome.
TEST_F(ErrorLogTest, UnwritableLogEndsItsRecursion) {
    App().DataFolder = "C:\\Missing\\";
    EXPECT_EQ(ErrorHandler(53, "File not found", 0, "m", "p"), Resume);
    EXPECT_FALSE(files.exists("C:\\Missing"));
    App().DataFolder = "C:\\Data\\";
    files.addFile(kLog, "old");
    files.lock(kLog);
    EXPECT_EQ(ErrorHandler(5, "Invalid procedure call or argument", 0, "m", "p"), ResumeNext);
    EXPECT_EQ(files.contents(kLog), "old");
    platform::ScopedPlatform none{platform::Platform{}};
    EXPECT_EQ(ErrorHandler(3021, "No current record", 0, "m", "p"), ResumeNext);
}

class ProcedureTest : public ErrorLogTest {};

TEST_F(ProcedureTest, ResumeRetriesWithOneEntryPerAttemptAndIsBounded) {
    Procedure proc("Module1", "LoadStaticDat");
    int attempts = 0, entries = 0;
    bool completed = true, after = false;
    proc.Run([&] {
        completed = proc.Step([&] {
            ++attempts;
            if (files.fileExists(kLog)) {
                ++entries;
                files.remove(kLog);
            }
            Raise(failure::kFileNotFound);
        });
        after = true;
    });
    if (files.fileExists(kLog)) ++entries;
    EXPECT_EQ(attempts, Procedure::kRetryLimit);
    EXPECT_EQ(entries, Procedure::kRetryLimit);
    // Once the retries are spent the statement is passed over and the procedure goes on.
    EXPECT_FALSE(completed);
    EXPECT_TRUE(after);

    attempts = 0;
    proc.Run([&] {
        EXPECT_TRUE(proc.Step([&] {
            if (++attempts < 3) Raise(failure::kPathNotFound);
        }));
    });
    EXPECT_EQ(attempts, 3);  // a later attempt succeeds
}

TEST_F(ProcedureTest, ResumeNextAndExitProjectContinue) {
    Procedure proc("frmscan", "ScanItems");
    std::vector<std::string> trace;
    proc.Run([&] {
        trace.push_back(proc.Step([] { Raise(failure::kInvalidCall); }) ? "ok" : "failed");
        trace.push_back(proc.Step([] { Raise(failure::kObjectNotSet); }) ? "ok" : "failed");
        trace.push_back(proc.Step([] { Raise(12345); }) ? "ok" : "failed");
        trace.push_back(proc.Step([] { throw std::bad_alloc(); }) ? "ok" : "failed");
        trace.push_back("end");
    });
    EXPECT_EQ(trace, (std::vector<std::string>{"failed", "failed", "failed", "failed", "end"}));
    EXPECT_NE(Log().find("Error [ 7 ]:  Out of memory"), std::string::npos);
}

TEST_F(ProcedureTest, LeaveOutcomesLeaveTheProcedure) {
    for (const ErrorLists& lists : {ErrorLists{.resumeAtLabel = "|5|"}, ErrorLists{}}) {
        Procedure proc("m", "p", lists);
        bool after = false;
        proc.Run([&] {
            proc.Step([&] { Raise(lists.resumeAtLabel.empty() ? 20 : 5); });
            after = true;
        });
        EXPECT_FALSE(after);
    }
    // Outside any step a failure is logged and leaves, whatever its outcome.
    Procedure proc("m", "outside");
    bool after = false;
    proc.Run([&] {
        Raise(failure::kInvalidCall);
        after = true;
    });
    EXPECT_FALSE(after);
    EXPECT_NE(Log().find("Procedure ( outside )"), std::string::npos);
}

}  // namespace
}  // namespace orvex
