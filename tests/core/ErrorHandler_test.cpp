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

class ErrorLogTest : public testing::MemoryPlatformTest {
  protected:
    ErrorLogTest() {
        files.addFolder("C:\\Data");
        App().DataFolder = "C:\\Data\\";
        App().DefinitionDate = "11/01/2026";
    }
    std::string Log() { return files.contents(kLog); }
};

// One number per outcome, and the fallback for numbers no table knows.
TEST(ErrorClassification, TablesAndFallback) {
    EXPECT_EQ(ClassifyFailure(53), Resume);
    EXPECT_EQ(ClassifyFailure(5), ResumeNext);
    EXPECT_EQ(ClassifyFailure(20), GotoZero);
    EXPECT_EQ(ClassifyFailure(91), ExitProject);
    EXPECT_EQ(ClassifyFailure(12345), ExitProject);
    EXPECT_EQ(ClassifyFailure(-5), ExitProject);
}

TEST(ErrorClassification, CallerListsOverrideTablesAndLastHitWins) {
    EXPECT_EQ(ClassifyFailure(53, {.resumeNext = "|9|53|"}), ResumeNext);
    EXPECT_EQ(ClassifyFailure(5, {.resumeAtLabel = "|5|"}), ResumeAtLabel);
    EXPECT_EQ(ClassifyFailure(53, {.resume = "|53|", .exit = "|53|"}), ExitProject);
    EXPECT_EQ(ClassifyFailure(53, {.resumeNext = "|53|", .gotoZero = "|53|"}), GotoZero);
    // The key carries its bars: 530 and 5 are other numbers.
    EXPECT_EQ(ClassifyFailure(53, {.resumeNext = "|530|5|"}), Resume);
}

TEST(ErrorClassification, UnknownOutcomeHasNoNameAndRevisionIsPadded) {
    EXPECT_EQ(OutcomeName(static_cast<Outcome>(99)), "");
    EXPECT_EQ(ErrorLogVersionText(1, 0, 7), "1.0.07");
    EXPECT_EQ(ErrorLogVersionText(2, 3, 123), "2.3.123");
}

TEST_F(ErrorLogTest, EntryWithoutLineNumber) {
    EXPECT_EQ(
        ErrorHandler(91, "Object variable or With block variable not set", 0, "frmmain", "actions"),
        ExitProject);
    EXPECT_EQ(Log(),
              "Error [ 91 ]:  Object variable or With block variable not set\r\n"
              "Location:  Procedure ( actions ) - Module ( frmmain )" +
                  kTwentyBlanks + "Outcome: Exit Project\r\n" + Tail());
}

TEST_F(ErrorLogTest, EntryWithLineNumber) {
    ErrorHandler(53, "File not found", 120, "Module1", "LoadStaticDat");
    EXPECT_EQ(Log(),
              "Error [ 53 ]:  File not found\r\n"
              "Location:  Procedure ( LoadStaticDat ) - Module ( Module1 )\r\n"
              "Line number:  120" +
                  kTwentyBlanks + "Outcome: Resume\r\n" + Tail());
}

TEST_F(ErrorLogTest, EntryOverwritesTheStartAndLeavesAnOlderTail) {
    const std::string older(2000, 'x');
    files.addFile(kLog, older);
    ErrorHandler(5, "Invalid procedure call or argument", 0, "frmscan", "ScanItems");
    const std::string entry =
        "Error [ 5 ]:  Invalid procedure call or argument\r\n"
        "Location:  Procedure ( ScanItems ) - Module ( frmscan )" +
        kTwentyBlanks + "Outcome: Resume Next\r\n" + Tail();
    EXPECT_EQ(Log(), entry + older.substr(entry.size()));
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

TEST_F(ErrorLogTest, DescriptionLineEndsAreCompactedToo) {
    ErrorHandler(1234, "first\r\n\r\n\r\n\r\nsecond", 0, "m", "p");
    EXPECT_TRUE(Log().starts_with("Error [ 1234 ]:  first\r\nsecond\r\nLocation:  "));
}

TEST_F(ErrorLogTest, FailedWriteIsLoggedUnderWriteErrorToLog) {
    files.failWrite(1, failure::kDiskFull);
    EXPECT_EQ(
        ErrorHandler(91, "Object variable or With block variable not set", 0, "frmmain", "actions"),
        ExitProject);
    // The caller acts on its own outcome, not on that of the failed write.
    EXPECT_EQ(ErrorOutcome, ExitProject);
    EXPECT_EQ(Log(),
              "Error [ 61 ]:  Disk full\r\n"
              "Location:  Procedure ( WriteErrorToLog ) - Module ( modErrorHandler )" +
                  kTwentyBlanks + "Outcome: Resume\r\n" + Tail());
}

TEST_F(ErrorLogTest, UnwritableLogEndsItsRecursion) {
    App().DataFolder = "C:\\Missing\\";
    EXPECT_EQ(ErrorHandler(53, "File not found", 0, "m", "p"), Resume);
    EXPECT_FALSE(files.exists("C:\\Missing"));
    App().DataFolder = "C:\\Data\\";
    files.addFile(kLog, "old");
    files.lock(kLog);
    EXPECT_EQ(ErrorHandler(5, "Invalid procedure call or argument", 0, "m", "p"), ResumeNext);
    EXPECT_EQ(files.contents(kLog), "old");
}

TEST_F(ErrorLogTest, NoPlatformStillReturnsAnOutcome) {
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
}

TEST_F(ProcedureTest, ResumeSucceedsOnALaterAttempt) {
    Procedure proc("Module1", "Main");
    int attempts = 0;
    proc.Run([&] {
        EXPECT_TRUE(proc.Step([&] {
            if (++attempts < 3) Raise(failure::kPathNotFound);
        }));
    });
    EXPECT_EQ(attempts, 3);
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
