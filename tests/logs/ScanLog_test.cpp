// ScanLog_test.cpp: the records of every action word, the allowed-list gate, the hand-over
// to the ScumList, and what the removal words do to the list and to frmremoval.
#include "logs/ScanLog.h"
#include "scan/ScanLogWrite.h"

#include "core/Version.h"
#include "logs/LogFixture.h"
#include "pages/RemovalPage.h"

namespace orvex {
namespace {

using Lines = std::vector<std::string>;

const std::string kLocation = "HKEY_LOCAL_MACHINE\\Software\\Bad";
const std::string kItem = "Runner";
const std::string kName = "BadThing";
const std::string kSep = "*****************";
const std::string kNow = "11/22/2026 7:14:05 PM";  // the memory clock's moment, en-US form
const std::string kDefinitionDate = "10/30/2026";

std::string Version() {
    return std::to_string(kVersion.major) + "." + std::to_string(kVersion.minor) + "." +
           std::to_string(kVersion.revision);
}

std::string Heading() {
    return "Orvex Sentry version " + Version() + ", definitions of " + kDefinitionDate +
           ", logged on " + kNow + "\r\n";
}

std::string Opening() {
    return Heading() + "Event - ";
}
std::string Closing() {
    return "\r\n" + kSep + "\r\n";
}

class ScanLogTest : public testing::LogTest {
  protected:
    ScanLogTest() { App().DefinitionDate = kDefinitionDate; }

    VbBool Write(const std::string& action, VbBool logOnly = VbFalse, std::int32_t index = 0,
                 const std::string& item = kItem, const std::string& category = "Registry") {
        return ScanLogWrite(kLocation, item, action, kName, category, logOnly, index);
    }

    void AddRows(int count) {
        for (int i = 1; i <= count; ++i)
            ScumListDetailsAdd(kName, "FileSystem", "C:\\Bad\\", "file" + std::to_string(i), "");
    }

    void AllowFinding(const std::string& name, const std::string& kind, const std::string& location,
                      const std::string& item) {
        ExclusionRecords().Add(ExclusionRecord{name, kind, location, item});
    }

    // The gate only opens while the definitions hold an [Exclusion] line.
    void LoadExclusionDefinition() {
        AppendLine(Definitions().ExclusionDefs, "bad.exe|BadThing|||4|1");
    }

    // frmremoval as BlockAll finds it: a bar over `total` rows.
    FrmRemoval& RemovalWindow(int total) {
        FrmRemoval& form = frmremoval();
        form.pb1.Min = 0;
        form.pb1.Max = total;
        form.pb1.Value = 0;
        form.PlayGif1.Play();
        return form;
    }
    // "rows left, bar value, then which of bar, animation and window still show".
    static std::string Removal(const FrmRemoval& form) {
        return std::to_string(ScumListOfRun().count()) + " " + std::to_string(form.pb1.Value) +
               (form.pb1.Visible ? " bar" : "") + (form.PlayGif1.Playing ? " playing" : "") +
               (form.PlayGif1.Visible ? " shown" : "") +
               (ui::IsLoaded<FrmRemoval>() ? " loaded" : "");
    }
};

TEST_F(ScanLogTest, EachActionWordWritesItsRecordUnderTheLogKey) {
    const std::string at = kLocation + ": " + kItem;
    const std::pair<const char*, std::string> cases[] = {
        {"Command", Opening() + "Scan started by command: " + kName + Closing()},
        {"Scheduled", Opening() + "Scheduled scan started." + Closing()},
        {"Start R", Opening() + "Registry scan started." + Closing()},
        {"Start F", Opening() + "File scan started." + Closing()},
        // Location and item run together here, unlike in every other record.
        {"found", Opening() + "Threat found: " + kLocation + kItem + "\r\nThreat name: " + kName +
                      Closing()},
        // No opening, no closing line end, and " : " between location and item.
        {"delete", kSep + kNow + " Removed: " + kLocation + " : " + kItem + "\r\n" + kSep},
        {"rename", Heading() + "Event - Item renamed: " + at + Closing()},
        {"Manual Intervention Required",
         Heading() + "Event - Manual removal required: " + at + Closing()},
        {"host", Opening() + "Hosts file entry: " + at + Closing()},
        {"created", Opening() + "Item created: " + at + Closing()},
        {"Add to Exclusion", Opening() + "Added to the allowed items: " + at + Closing()},
        {"Included on Exclude List", Opening() + "Allowed item, not listed: " + at + Closing()},
        {"suspect", Opening() + "Suspect file: " + at + Closing()},
        {"LSP", Opening() + "Winsock provider: " + kLocation + " : " + kItem +
                    "\r\nThreat name: " + kName + Closing()},
    };
    for (const auto& [action, expected] : cases) {
        files.addFile(kLoggedTxt, "");
        AddRows(1);  // "delete" takes a row away
        EXPECT_EQ(Write(action, VbTrue, 1), VbTrue) << action;
        EXPECT_EQ(LoggedRecords(), std::vector<std::string>{expected}) << action;
    }
}

TEST_F(ScanLogTest, RenameAndManualRemovalTakeTheirKeyFromTheLanguage) {
    LngArray()[305] = "Xx";  // a language whose pieces differ from the log key's
    LngArray()[316] = "gKez";
    Write("rename", VbTrue);
    Write("Manual Intervention Required", VbTrue);
    Write("host", VbTrue);
    const auto records = LoggedRecords();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0], "ERR2");
    EXPECT_EQ(records[1], "ERR2");
    EXPECT_TRUE(StartsWith(records[2], Opening()));
}

TEST_F(ScanLogTest, WordsThatWriteNothingStillOpenTheFile) {
    // The repair's capitalised "Delete" and unknown words match no branch.
    for (const char* word : {"Delete", "FOUND", "", "File In List Not Found"}) {
        AddRows(1);
        Write(word, VbTrue, 1);
    }
    EXPECT_TRUE(files.exists(kLoggedTxt));
    EXPECT_EQ(files.contents(kLoggedTxt), "");
}

TEST_F(ScanLogTest, FindingsReachTheScumListUnlessLogOnly) {
    Write("found", VbTrue, 0, "one.exe");
    EXPECT_EQ(ScumListOfRun().count(), 0);
    Write("found", VbFalse, 0, "two.exe");
    Write("found", 1, 0, "three.exe");  // only -1 means log only
    Write("suspect", VbFalse, 0, "four.exe");
    Write("Delete", VbFalse, 0, "five.exe");  // writes nothing, but is listed
    ASSERT_EQ(ScumListOfRun().count(), 4);
    const ScumRow& first = ScumListOfRun().row(1);
    EXPECT_EQ(first.name + "|" + first.category + "|" + first.level + "|" + first.location + "|" +
                  first.item,
              kName + "|Registry|Confirmed|" + kLocation + "|two.exe");
    EXPECT_EQ(ScumListOfRun().row(3).level, "Suspect");
    EXPECT_EQ(ScumListOfRun().row(4).item, "five.exe");
    EXPECT_EQ(LoggedRecords().size(), 4u);
}

TEST_F(ScanLogTest, TheGateNeedsExclusionDefinitionsAnItemAndAnExactKindAndLocation) {
    AllowFinding(kName, "Registry(Value)", kLocation, "Exact");
    AllowFinding(kName, "Registry(Value)", kLocation, "");
    AllowFinding(kName, "registry(value)", kLocation, kItem);
    AllowFinding(kName, "Registry(Value)", LCase(kLocation), kItem);
    // No [Exclusion] line loaded: the user's allowed list is not consulted at all.
    EXPECT_EQ(Write("found", VbFalse, 0, "Exact", "Registry(Value)"), VbTrue);
    LoadExclusionDefinition();
    // An empty item never matches, not even an allowed item with an empty name.
    EXPECT_EQ(Write("found", VbFalse, 0, "", "Registry(Value)"), VbTrue);
    EXPECT_EQ(Write("found", VbFalse, 0, kItem, "Registry(Value)"), VbTrue);
    EXPECT_EQ(ScumListOfRun().count(), 3);
    for (const std::string& record : LoggedRecords())
        EXPECT_TRUE(StartsWith(record, Opening() + "Threat found: ")) << record;
}

TEST_F(ScanLogTest, AnAllowedFindingIsLoggedAsSuchAndNotListedWhateverTheWordOrLogOnly) {
    LoadExclusionDefinition();
    // Name and item compare without regard to case.
    AllowFinding("BADTHING", "Registry", kLocation, "RUNNER");
    EXPECT_EQ(Write("found"), VbFalse);
    EXPECT_EQ(Write("suspect"), VbFalse);
    EXPECT_EQ(Write("Delete"), VbFalse);  // the gate turns even a silent word into a record
    EXPECT_EQ(Write("found", VbTrue), VbFalse);
    EXPECT_EQ(ScumListOfRun().count(), 0);
    const auto records = LoggedRecords();
    ASSERT_EQ(records.size(), 4u);
    EXPECT_EQ(records[0],
              Opening() + "Allowed item, not listed: " + kLocation + ": " + kItem + Closing());
}

TEST_F(ScanLogTest, FileInListNotFoundRemovesTheRowAndManualRemovalOnlyAdvancesTheBar) {
    AddRows(3);
    FrmRemoval& form = RemovalWindow(3);
    Write("File In List Not Found", VbTrue, 2);
    EXPECT_EQ(ScumListOfRun().row(1).item + ScumListOfRun().row(2).item, "file1file3");
    EXPECT_EQ(Removal(form), "2 0 bar playing loaded");
    EXPECT_EQ(files.contents(kLoggedTxt), "");

    // A manual removal advances the bar, never past the end, but keeps row and window,
    // cancelled or not.
    RemovalWindow(2);
    App().RemovalCancelled = VbTrue;
    Lines after;
    for (int index : {2, 1, 1}) {
        Write("Manual Intervention Required", VbTrue, index);
        after.push_back(Removal(form));
    }
    EXPECT_EQ(after, (Lines{"2 1 bar playing loaded", "2 2 bar loaded", "2 2 bar loaded"}));
}

TEST_F(ScanLogTest, DeleteRemovesTheRowAndTheLastOneClosesTheWindow) {
    AddRows(2);
    FrmRemoval& form = RemovalWindow(2);
    form.Label1.Caption = "Removing Threats";
    Write("delete", VbTrue, 2);
    EXPECT_EQ(Removal(form), "1 1 bar playing loaded");
    EXPECT_EQ(form.Label2.Caption, "Backing up and removing items...");
    EXPECT_GE(host.Yields(), 1);  // the user may act while the row goes

    Write("delete", VbTrue, 1);
    EXPECT_EQ(Removal(form), "0 2");
    EXPECT_EQ(form.Label1.Caption + "|" + form.Label2.Caption, "Removal finished.|");
    EXPECT_EQ(LoggedRecords().size(), 2u);
}

TEST_F(ScanLogTest, DeleteAfterACancelStillRemovesAndLogsButLeavesTheWindow) {
    AddRows(1);
    FrmRemoval& form = RemovalWindow(1);
    // The cancel press is handled while the delete lets events run.
    host.AtYield(1, [] { App().RemovalCancelled = VbTrue; });
    Write("delete", VbTrue, 1);
    EXPECT_EQ(Removal(form), "0 0 bar playing loaded");
    EXPECT_EQ(LoggedRecords().size(), 1u);
}

TEST_F(ScanLogTest, FailuresAfterOpeningAreSilentAndKeepTheFindingUnlisted) {
    // A list index past the end: the record is written, the bar stays.
    FrmRemoval& form = RemovalWindow(1);
    EXPECT_EQ(Write("delete", VbTrue, 5), VbTrue);
    EXPECT_EQ(LoggedRecords().size(), 1u);
    EXPECT_EQ(Removal(form), "0 0 bar playing loaded");

    // A log that cannot be opened: no record, no row, and no error log entry.
    files.lock(kLoggedTxt);
    EXPECT_EQ(Write("found", VbFalse), VbTrue);
    EXPECT_EQ(ScumListOfRun().count(), 0);
    EXPECT_FALSE(files.exists(kErrorLog));
}

}  // namespace
}  // namespace orvex
