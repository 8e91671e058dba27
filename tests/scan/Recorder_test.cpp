// Recorder_test.cpp: recording findings (duplicates, icons, List1, ScumCount, the count on
// frmscan), and the [Exclusion] test of file names with its size expressions.
#include "scan/Recorder.h"

#include <algorithm>

#include "pages/ScanPage.h"
#include "scan/ScanFixture.h"

namespace orvex {
namespace {

class RecorderTest : public testing::ScanTest {
  protected:
    RecorderTest() { LngArray()[431] = "Threats found:"; }

    static void ItemList(std::initializer_list<std::string> lines) {
        for (const auto& line : lines)
            AppendLine(Definitions().ItemListDefs, line);
    }
    // As the loader leaves the table: sorted, the empty element first.
    static void Exclusions(std::initializer_list<std::string> lines) {
        TextTable& table = Definitions().ExclusionDefs;
        for (const auto& line : lines)
            AppendLine(table, line);
        std::sort(table.Items.begin(), table.Items.end());
    }

    static void Add(const std::string& name, const std::string& item = "evil.exe",
                    const std::string& category = "FileSystem",
                    const std::string& location = "C:\\Temp\\", const std::string& level = "") {
        ScumListDetailsAdd(name, category, location, item, level);
    }

    static std::vector<std::string> List1() { return List1OfRun().Items(); }
    // "rows; the names of List1; ScumCount; the count on frmscan".
    static std::string State() {
        std::string names;
        for (const std::string& name : List1())
            names += name + ",";
        return std::to_string(Rows().count()) + "; " + names + "; " +
               std::to_string(App().ScumCount) + "; " + frmscan().lbl4.Caption;
    }
};

// ---------------------------------------------------------------------------------------
// Duplicates, List1 and ScumCount

// Name and item compare without case, the first spelling stays and the later level wins;
// level, location and category must agree exactly.
TEST_F(RecorderTest, DuplicatesIgnoreTheCaseOfNameAndItemOnly) {
    Add("Evil Agent", "evil.exe");
    Add("EVIL AGENT", "EVIL.EXE");
    Add("evil agent", "Evil.Exe", "FileSystem", "C:\\Temp\\", kLevelConfirmed);
    Add("Evil Agent", "evil.exe", "FileSystem", "C:\\TEMP\\");
    Add("Evil Agent", "evil.exe", "FileSystem", "C:\\Temp\\", kLevelSuspect);
    Add("Evil Agent", "evil.exe", "Memory Resident", "C:\\Temp\\");
    EXPECT_EQ(State(), "4; Evil Agent,; 1; Threats found: 1");
    EXPECT_EQ(Rows().row(1).name + "|" + Rows().row(1).level, "Evil Agent|Confirmed");
    // A duplicate changes neither List1 nor the count nor the caption.
    frmscan().lbl4.Caption = "untouched";
    List1OfRun().RemoveItem(0);
    App().ScumCount = 7;
    Add("EVIL AGENT", "Evil.exe");
    EXPECT_EQ(State(), "4; ; 7; untouched");
}

TEST_F(RecorderTest, List1KeepsTheFirstSpellingInOrderOfArrivalAndNoEmptyName) {
    Add("Spy Tool", "a.exe");
    Add("Adware X", "b.exe");
    Add("SPY TOOL", "c.exe");
    Add("\xC9vil", "d.exe");  // E acute
    Add("\xE9VIL", "e.exe");  // e acute: the same name
    Add("", "f.exe");         // a row, but no entry
    // The caption shows the count unless a stop was requested.
    EXPECT_EQ(State(), "6; Spy Tool,Adware X,\xC9vil,; 3; Threats found: 3");
    App().StopRequested = VbTrue;
    Add("Late", "g.exe");
    EXPECT_EQ(State(), "7; Spy Tool,Adware X,\xC9vil,Late,; 4; Threats found: 3");
}

TEST_F(RecorderTest, List1FollowsRemovalsAndEditsOnlyAtTheNextAdd) {
    Add("Spy Tool", "a.exe");
    Add("Adware X", "b.exe");
    Add("SPY TOOL", "c.exe");
    ScumListOfRun().removeRow(1);
    // Nothing is rebuilt on removal...
    EXPECT_EQ(State(), "2; Spy Tool,Adware X,; 2; Threats found: 2");
    // ...but the next add builds from the rows left: the later spelling, in the order of
    // the rows now first.
    Add("Other", "d.exe");
    EXPECT_EQ(List1(), (std::vector<std::string>{"Adware X", "SPY TOOL", "Other"}));
    // A name taken out by the review page comes back while it still has rows.
    List1OfRun().RemoveItem(0);
    Add("Other", "e.exe");
    EXPECT_EQ(State(), "4; Adware X,SPY TOOL,Other,; 3; Threats found: 3");
}

TEST_F(RecorderTest, RowsAreNumberedFromOneAndStayConsistentAfterRemoval) {
    Add("A", "1.exe");
    Add("B", "2.exe");
    Add("C", "3.exe");
    ScumListOfRun().setChecked(3, true);
    ScumListOfRun().removeRow(2);
    ASSERT_EQ(Rows().count(), 2);
    EXPECT_EQ(Rows().row(2).name, "C");
    EXPECT_TRUE(Rows().row(2).checked);
    EXPECT_FALSE(Rows().row(1).checked);
    // The removed finding is new again; the others are still duplicates.
    Add("b", "2.EXE");
    Add("c", "3.exe");
    EXPECT_EQ(Rows().count(), 3);
    EXPECT_EQ(Rows().row(3).name, "b");
    EXPECT_THROW(ScumListOfRun().removeRow(0), Failure);
    EXPECT_THROW(Rows().row(4), Failure);
    ScumListOfRun().clear();
    Add("A", "1.exe");
    EXPECT_EQ(Rows().count(), 1);
    EXPECT_EQ(List1(), std::vector<std::string>{"A"});
}

// ---------------------------------------------------------------------------------------
// Icons

// Cookie rows have no icon; a risk that is no number adds no row and no count.
TEST_F(RecorderTest, IconFollowsTheFirstItemListLineOfTheName) {
    ItemList({"Two|2", "Three|3|ab", "Five|5", "Bare", "Twice|4", "TWICE|1", "|5", "Broken|high"});
    const struct {
        std::string name, category;
        int icon;
    } cases[] = {{"Unlisted", "FileSystem", 1}, {"two", "FileSystem", 1},
                 {"THREE", "FileSystem", 2},    {"Bare", "FileSystem", 1},
                 {"twice", "FileSystem", 3},    {"", "FileSystem", 3},
                 {"Five", "Cookie", kNoIcon},   {"Five", "FileSystem", 3}};
    for (const auto& c : cases) {
        ScumListOfRun().clear();
        Add(c.name, "evil.exe", c.category);
        ASSERT_EQ(Rows().count(), 1) << c.name;
        EXPECT_EQ(Rows().row(1).icon, c.icon) << c.name << " " << c.category;
    }
    App().ScumCount = 0;
    Add("Broken", "other.exe");
    EXPECT_EQ(Rows().count(), 1);
    EXPECT_EQ(App().ScumCount, 0);
    EXPECT_NE(ErrorLog().find("ScumListDetailsAdd"), std::string::npos);
}

// ---------------------------------------------------------------------------------------
// ExclusionRoutine

// One sorted table for many names: lines of other names are passed over, so each name
// meets only its own lines.
TEST_F(RecorderTest, ExclusionLinesDecideByNameThreatFolderAndSize) {
    Exclusions({"code.exe||||7|0", "short.exe|||3|0", "cASE.EXE||||3|0", "Other.exe||||3|0",
                "thr.exe|alpha|||3|0", "thr.exe|zulu|||2|1", "fold.exe||>5000|\\TEMP\\|3|0",
                "fold.exe||||9|1", "size.exe||10||5|1", "size.exe||4||6|2", "a.exe||||bad|0",
                "b.exe||0|||bad", "b.exe||||3|bad", "x.exe|x|||3|bad"});
    files.addFile("C:\\Temp\\fold.exe", "tiny");
    files.addFile("C:\\Other\\fold.exe", "tiny");
    files.addFile("C:\\Temp\\size.exe", "four");
    const struct {
        std::string name, folder, threat;
        std::int32_t code;
    } cases[] = {
        {"none.exe", "C:\\Temp\\", "x", 4},   // not in the table
        {"code.exe", "C:\\Temp\\", "x", 7},   // no tests: the code on name
        {"short.exe", "C:\\Temp\\", "x", 4},  // fewer than six fields: not read at all
        {"case.exe", "C:\\Temp\\", "x", 3},   // field zero compares in lower case...
        {"other.exe", "C:\\Temp\\", "x", 4},  // ...but 'O' sorts before 'o' and is passed
        {"thr.exe", "C:\\Temp\\", "ALPHA", 0},
        {"thr.exe", "C:\\Temp\\", "Zulu", 3},  // the alpha line ends the walk first
        {"fold.exe", "C:\\Temp\\", "x", 0},    // the folder part overrides the size test
        {"fold.exe", "C:\\Other\\", "x", 3},   // and a miss ends the walk
        {"size.exe", "C:\\Temp\\", "x", 2},    // a failed size test goes on to the next line
        // A conversion failure keeps the result so far.
        {"a.exe", "C:\\", "x", 4},
        {"b.exe", "C:\\", "x", 4},
        {"x.exe", "C:\\", "x", 3},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ExclusionRoutine(c.name, c.folder, c.threat), c.code)
            << c.name << " " << c.folder;
    files.addFile("C:\\Temp\\size.exe", "seven..");
    EXPECT_EQ(ExclusionRoutine("size.exe", "C:\\Temp\\", "x"), 6);
}

TEST_F(RecorderTest, ExclusionStopsOnceTheFirstCharacterHasPassed) {
    Exclusions({"b.exe||||3|0", "c.exe||||3|0", "d.exe||||3|0"});
    EXPECT_EQ(ExclusionRoutine("a.exe", "C:\\", "x"), 4);
    EXPECT_EQ(host.Yields(), 2);  // the empty element, then the "b" line
    EXPECT_EQ(ExclusionRoutine("z.exe", "C:\\", "x"), 4);
    EXPECT_EQ(host.Yields(), 2 + 4);
}

TEST_F(RecorderTest, ExclusionResolvesShortNames) {
    // The size test proves that the long names still make a path to the file.
    Exclusions({"evil agent.exe||1||3|0"});
    files.addFile("C:\\Program Files\\Evil Agent.exe", "x");
    EXPECT_EQ(ExclusionRoutine("evilag~1.exe", "C:\\PROGRA~1\\", "x"), 0);
    // A folder that cannot be resolved keeps its text.
    Exclusions({"a.exe|||nosuch~1|3|0"});
    EXPECT_EQ(ExclusionRoutine("a.exe", "C:\\NOSUCH~1\\", "x"), 0);
}

// "<" in a list is strict, so 1000 misses "<1000*5"; the rest is then cut as "*5" and its
// empty first piece fails to convert: the routine ends with the code on name. A listed size
// does not help either: the hit on "<1000" is undone by the final test.
TEST_F(RecorderTest, ExclusionSizeFromTheFileLength) {
    files.addFile("C:\\Temp\\evil.exe", std::string(1000, 'x'));
    files.addFile("C:\\Temp\\five.exe", std::string(5, 'x'));
    const struct {
        std::string test;
        std::string file;
        std::int32_t code;
    } cases[] = {
        {">1000", "evil.exe", 0},  // ">" is never strict
        {"<1000", "evil.exe", 0},  // "<" at the end includes the number
        {"1000", "evil.exe", 0},
        {"999", "evil.exe", 3},
        {">1000*5", "evil.exe", 0},       // a prefixed hit survives only if equal
        {"<5000*7", "evil.exe", 3},       // hit on "<5000", undone by the final 5000 == 1000
        {"123*1000*789", "evil.exe", 0},  // plain lists work
        {"123*456*789", "evil.exe", 3},
        {"<10", "gone.exe", 0},  // a missing file has size 0
        {"0", "gone.exe", 0},
        {"<1000*5", "evil.exe", 3},
        {"<1000*5", "five.exe", 3},
    };
    for (const auto& c : cases) {
        Definitions() = DefinitionTables{};
        Exclusions({c.file + "||" + c.test + "||3|0"});
        EXPECT_EQ(ExclusionRoutine(c.file, "C:\\Temp\\", "x"), c.code) << c.test << " " << c.file;
        EXPECT_EQ(ErrorLog().find("Type mismatch") != std::string::npos, c.test == "<1000*5");
    }
    EXPECT_NE(ErrorLog().find("ExclusionRoutine"), std::string::npos);
}

}  // namespace
}  // namespace orvex
