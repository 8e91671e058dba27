// DefinitionLoader_test.cpp: the definition files through LoadReferenceFiles on the memory
// back-end: sections, versions, sorting and indexes, what the main window shows, and
// damaged files.
#include "definitions/DefinitionLoader.h"

#include <algorithm>
#include <random>

#include "core/AppState.h"
#include "core/Config.h"
#include "core/Version.h"
#include "definitions/Cipher.h"
#include "definitions/DefinitionCompiler.h"
#include "definitions/DefinitionTables.h"
#include "pages/MainWindow.h"
#include "support/MemoryFixture.h"
#include "support/SourceFile.h"

namespace orvex {
namespace {

using testing::ReadSourceFile;

using platform::Hive;
using Lines = std::vector<std::string>;

const std::string kData = "C:\\Orvex\\";
const std::string kDefs = kData + "ovsdef.dat";
const std::string kStatic = kData + "ovsstatic.dat";

std::string Record(std::string_view bytes) {
    const auto n = static_cast<std::uint32_t>(bytes.size());
    std::string out{static_cast<char>(n & 0xFF), static_cast<char>(n >> 8 & 0xFF),
                    static_cast<char>(n >> 16 & 0xFF), static_cast<char>(n >> 24 & 0xFF)};
    return out + std::string(bytes);
}

// The lines of a text table, without the empty element the array shape carries.
Lines Filled(const TextTable& table) {
    Lines out;
    for (const std::string& line : table.Items)
        if (!line.empty()) out.push_back(line);
    return out;
}

// Each digest as "first character code hash|name", the empty element first.
Lines Md5s() {
    Lines out;
    for (const Md5Record& r : Definitions().Md5Index.Items)
        out.push_back(std::to_string(r.FirstChar) + " " + r.Hash + "|" + r.Name);
    return out;
}

class DefinitionLoaderTest : public testing::MemoryPlatformTest {
  protected:
    DefinitionLoaderTest() {
        App().DataFolder = kData;
        App().SystemFolder = "C:\\WINDOWS\\system32";
        App().WindowsFolder = "C:\\WINDOWS";
        LngArray()[175] = "Definitions are missing";
        LngArray()[176] = "Definitions of";
        LngArray()[177] = "No definitions loaded";
        files.addFolder("C:\\Orvex");
        registry.addKey(Hive::LocalMachine, config::kProductKey);
        // The load starts with the buttons off, as actions leaves them.
        FrmMain& form = frmmain();
        form.Image2.Enabled = form.Image3.Enabled = form.Image4.Enabled = form.mnuRun.Enabled =
            false;
        form.Image2.Picture = 14;
        form.Image3.Picture = 7;
        form.lvFiles.ListItems.emplace_back().Text = "stale";
    }
    void Defs(std::string_view source) { files.addFile(kDefs, CompileDefinitionSource(source)); }
    void Static(std::string_view source) {
        files.addFile(kStatic, CompileDefinitionSource(source));
    }
    // The main window's state: "Image2 on/picture, Image3 on/picture, Image4 on, mnuRun on,
    // rows of lvFiles; lbl1; lbldef".
    static std::string MainWindow() {
        const FrmMain& f = frmmain();
        auto on = [](bool b) { return std::string(b ? "on" : "off"); };
        return on(f.Image2.Enabled) + "/" + std::to_string(f.Image2.Picture) + " " +
               on(f.Image3.Enabled) + "/" + std::to_string(f.Image3.Picture) + " " +
               on(f.Image4.Enabled) + " " + on(f.mnuRun.Enabled) + " " +
               std::to_string(f.lvFiles.ListItems.size()) + "; " + f.lbl1.Caption + "; " +
               f.lbldef.Caption;
    }
    std::string Value(const char* name) {
        return registry.data(Hive::LocalMachine, config::kProductKey, name).value_or("<none>");
    }

    DefinitionTables& t = Definitions();
};

const char* kTwoFiles = "[Files]\nBeta|Beta.EXE\nAlpha|alpha.dll\n[End]\n";

// --- Presence of the files and what the main window shows ---------------------------------

TEST_F(DefinitionLoaderTest, BothFilesMissingWarnsAndLeavesOnlyUpdateAndExit) {
    LoadReferenceFiles();
    ASSERT_EQ(host.Messages().size(), 1u);
    EXPECT_EQ(host.Messages()[0].prompt, "Definitions are missing");
    EXPECT_EQ(MainWindow(), "off/14 on/6 on off 0; No definitions loaded; Definition File date: ");
    EXPECT_EQ(Value("DAT") + Value("StaticDAT"), "");
    EXPECT_EQ(Value("InstalledVer"), VersionText() + "||");
}

TEST_F(DefinitionLoaderTest, MissingStaticFileIsNoErrorAndTheScanComesOn) {
    Defs(std::string("Ver=11/15/2026\n") + kTwoFiles);
    LoadReferenceFiles();
    EXPECT_TRUE(host.Messages().empty());
    EXPECT_EQ(Value("DAT"), "11/15/2026");
    EXPECT_EQ(Value("InstalledVer"), VersionText() + "|11/15/2026|");
    EXPECT_EQ(MainWindow(),
              "on/1 on/4 on on 0; Definitions of 11/15/2026; "
              "Definition File date: 11/15/2026");
}

TEST_F(DefinitionLoaderTest, EmptyDefinitionFileCountsAsPresent) {
    files.addFile(kDefs, "");
    LoadReferenceFiles();
    EXPECT_TRUE(host.Messages().empty());
    EXPECT_EQ(App().DefinitionDate, "");
    EXPECT_EQ(MainWindow(), "off/14 on/4 off on 0; No definitions loaded; Definition File date: ");
    for (TextTable* table : t.TextTables())
        EXPECT_EQ(table->Count, 0);
}

TEST_F(DefinitionLoaderTest, OneFilesLineLoadsEverythingUnsortedWithTheScanOff) {
    Defs(
        "Ver=1 May\n[Files]\nSolo|Solo.exe\n[End]\n[Exclusion]\nz.exe||||0|0\na.exe||||0|0\n[End]\n"
        "[MD5]\nffff|Late\n0000|Early\n[End]\n");
    LoadReferenceFiles();
    EXPECT_EQ(t.FileDefs.Items, (Lines{"Solo|Solo.exe", ""}));
    EXPECT_EQ(t.ExclusionDefs.Items, (Lines{"z.exe||||0|0", "a.exe||||0|0", ""}));
    EXPECT_TRUE(t.Md5Index.Items.empty());
    EXPECT_EQ(MainWindow(),
              "off/14 on/4 off on 0; Definitions of 1 May; Definition File date: 1 May");
}

// --- Sections --------------------------------------------------------------------------

TEST_F(DefinitionLoaderTest, EachSectionFillsItsTableInFileOrder) {
    Static(
        "Ver=1.0.3\n[Descriptions]\nA|Adware\n[End]\n[Registry]\nFirst|HKEY_USERS|Key\n[End]\n"
        "[DoNotUnRegister]\nstatic|0\n[End]\n");
    Defs(
        "[Add\\Remove]\nT1|Uninstall One\n[End]\n[Startup]\nT2|systemdir\n[End]\n"
        "[CLSID]\nT3|{0000}\n[End]\n[ItemList]\nT4|3|AB\nT5\n[End]\n"
        "[Registry]\nT6|HKEY_CURRENT_USER|Software\\T6|value "
        "text\nT7|HKEY_LOCAL_MACHINE|Software\\T7\n"
        "[End]\n[DoNotUnRegister]\nabc|0\nno separator\n[End]\n[Descriptions]\nB|Cookies\n[End]\n"
        "[Exclusion]\nk.exe|||SystemDir|3|1\nd.exe|||WINDOWSDIR\\x|3|1\n[End]\n"
        "[Unknown]\nignored|line\n[End]\noutside|any section\n");
    LoadReferenceFiles();
    EXPECT_EQ(t.AddRemoveDefs.Items, (Lines{"T1|Uninstall One", ""}));
    // Exclusion placeholders are replaced without regard to case, and only there.
    EXPECT_EQ(t.StartupDefs.Items, (Lines{"T2|systemdir", ""}));
    EXPECT_EQ(Filled(t.ExclusionDefs),
              (Lines{"k.exe|||C:\\WINDOWS\\system32|3|1", "d.exe|||C:\\WINDOWS\\x|3|1"}));
    EXPECT_EQ(t.ClsidDefs.Items, (Lines{"T3|{0000}", ""}));
    EXPECT_EQ(t.ItemListDefs.Items, (Lines{"T4|3|AB", "T5", ""}));
    EXPECT_EQ(t.ItemListDefs.Count, 2);
    // The static file's lines come first; a four-column line keeps its value text.
    EXPECT_EQ(t.RegistryDefs.Items,
              (Lines{"First|HKEY_USERS|Key", "T6|HKEY_CURRENT_USER|Software\\T6|value text",
                     "T7|HKEY_LOCAL_MACHINE|Software\\T7", ""}));
    EXPECT_EQ(t.DescriptionDefs.Items, (Lines{"A|Adware", "B|Cookies", ""}));
    // The static file does not know [DoNotUnRegister]; lines without "|" are not kept.
    EXPECT_EQ(t.DoNotUnRegisterDefs.Items, (Lines{"abc|0", ""}));
}

// MD5 lines need a separator, and Files lines without one stay.
TEST_F(DefinitionLoaderTest, MissingEndLeavesTwoSectionsOnAndTheEarlierOneTakesTheLines) {
    Defs("[MD5]\nno separator\nbbbb|B\n[End]\n[Files]\nA|a.exe\nNoSeparator\nB|b.exe\n[End]\n");
    LoadReferenceFiles();
    EXPECT_EQ(t.Md5Index.Count, 1);
    EXPECT_EQ(Filled(t.FileDefs), (Lines{"NoSeparator", "a.exe|A", "b.exe|B"}));
    EXPECT_EQ(t.FileIndex[3].FileName, "b.exe");
    // The column swap of the line without "|" fails as a subscript and goes on.
    EXPECT_NE(ErrorLog().find("Error [ 9 ]"), std::string::npos);

    Defs(
        "[Files]\nF1|f1.exe\n[CLSID]\nF2|f2.exe\n[End]\n"
        "[Registry]\n[Startup]\nS1|s1.exe\n[End]\nafter|end\n"
        "[DoNotUnRegister]\n[ItemList]\nd41d|0\n[End]\n");
    LoadReferenceFiles();
    EXPECT_EQ(Filled(t.FileDefs), (Lines{"f1.exe|F1", "f2.exe|F2"}));
    EXPECT_EQ(t.ClsidDefs.Count, 0);
    EXPECT_EQ(t.StartupDefs.Items, (Lines{"S1|s1.exe", ""}));
    EXPECT_EQ(t.RegistryDefs.Count, 0);
    // [DoNotUnRegister] files a line apart, so it lands in the open section as well.
    EXPECT_EQ(t.DoNotUnRegisterDefs.Items, (Lines{"d41d|0", ""}));
    EXPECT_EQ(t.ItemListDefs.Items, (Lines{"d41d|0", ""}));
}

// --- Sorting and the indexes ---------------------------------------------------------------

TEST_F(DefinitionLoaderTest, FilesAndHashesAreSortedAndIndexed) {
    Static("[Exclusion]\nzeta.exe||||0|0\nalpha.exe||||0|0\n[End]\n");
    Defs(
        "[MD5]\nc3|Gamma\n0a|Alpha\nb2|Beta\n[End]\n"
        "[Files]\nThreatZ|Zed.EXE\nThreatA|apple.dll\nThreatM|MID.sys\n[End]\n");
    LoadReferenceFiles();
    EXPECT_EQ(t.FileDefs.Items,
              (Lines{"", "apple.dll|ThreatA", "mid.sys|ThreatM", "zed.exe|ThreatZ"}));
    ASSERT_EQ(t.FileIndex.size(), t.FileDefs.size());
    EXPECT_EQ(t.FileIndex[2].FileName + "|" + t.FileIndex[2].Name, "mid.sys|ThreatM");
    EXPECT_EQ(t.ExclusionDefs.Items, (Lines{"", "alpha.exe||||0|0", "zeta.exe||||0|0"}));

    EXPECT_EQ(Md5s(), (Lines{"0 |", "48 0a|Alpha", "98 b2|Beta", "99 c3|Gamma"}));
    // The raw hash lines go once the index is built.
    EXPECT_EQ(std::to_string(t.Md5Index.Count) + " " + std::to_string(t.Md5Defs.Count), "3 0");
    EXPECT_EQ(t.Md5Defs.Items, (Lines{""}));
}

// Within a file the last definition version and the first static version win; a reload
// replaces tables and date but keeps the static version of the first load.
TEST_F(DefinitionLoaderTest, VersionsAndReload) {
    Static("Ver=old static\nVer=static two\n");
    Defs(
        "Ver=first\n[Files]\nA|a.exe\nB|b.exe\nC|c.exe\n[End]\n[Startup]\nS|s\n[End]\n"
        "Ver=old date=ignored\n");
    LoadReferenceFiles();
    EXPECT_EQ(Value("InstalledVer"), VersionText() + "|old date|old static");
    Static("Ver=new static\n");
    Defs("Ver=new date\n[Files]\nX|x.exe\nY|y.exe\n[End]\n");
    LoadReferenceFiles();
    EXPECT_EQ(Filled(t.FileDefs), (Lines{"x.exe|X", "y.exe|Y"}));
    ASSERT_EQ(t.FileIndex.size(), 3u);
    EXPECT_EQ(t.StartupDefs.Count, 0);
    EXPECT_EQ(App().StaticDefinitionVer + "|" + Value("StaticDAT") + "|" + App().DefinitionDate,
              "old static|old static|new date");

    EXPECT_EQ(ErrorLog().find("Error [ 9 ]"), std::string::npos);
    // A data line starting with "Ver" is filed and read as a version too; without "=" the
    // read fails, is logged, and the load goes on.
    Defs("Ver=kept\n[Startup]\nVerminator|v.exe\n[End]\n");
    LoadReferenceFiles();
    EXPECT_EQ(App().DefinitionDate + " " + t.StartupDefs[0], "kept Verminator|v.exe");
    EXPECT_NE(ErrorLog().find("Error [ 9 ]"), std::string::npos);
    Defs("Ver=date\n[Startup]\nVer|=dummy.exe\n[End]\n");
    LoadReferenceFiles();
    EXPECT_EQ(App().DefinitionDate + " " + t.StartupDefs[0], "dummy.exe Ver|=dummy.exe");
}

// The yields count the steps of the classic algorithm, so they pin its pivot: the middle
// index with halves rounded to even (21 steps here; 16 rounding down, 20 rounding halves up).
TEST(QuickSortMe, PivotIsTheMiddleRoundedHalfToEven) {
    ui::HeadlessHost host;
    ui::ScopedHost scoped(host);
    Lines letters{"g", "a", "b", "c", "a", "e", "a", "e"};
    QuickSortMe(letters, -1, -1);
    EXPECT_EQ(letters, (Lines{"a", "a", "a", "b", "c", "e", "e", "g"}));
    EXPECT_EQ(host.Yields(), 21);
}

TEST(QuickSortMe, SortsDeepInputsWithoutExhaustingTheStack) {
    std::mt19937 random(7);
    Lines shuffled, same(200000, "same"), descending, empty;
    for (int i = 0; i < 5000; ++i)
        shuffled.push_back(std::to_string(random() % 700));
    for (int i = 200000; i > 0; --i)
        descending.push_back(std::to_string(1000000 + i));
    for (Lines* lines : {&shuffled, &same, &descending, &empty}) {
        QuickSortMe(*lines, -1, -1);
        EXPECT_TRUE(std::is_sorted(lines->begin(), lines->end()));
    }
    EXPECT_TRUE(empty.empty());
}

// --- Damaged files -----------------------------------------------------------------------

TEST_F(DefinitionLoaderTest, UndecipherableRecordsAreDataAndAnIncompleteOneEndsTheFile) {
    std::string otherKey = "Under another key";
    std::string bytes = CompileDefinitionSource("[Startup]");
    bytes += Record(Encrypt(otherKey, "Other"));
    bytes += Record("no marker");
    bytes += CompileDefinitionSource("[End]");
    bytes += Record(Encrypt(otherKey, "Other")) + Record("outside");
    files.addFile(kDefs, bytes);
    LoadReferenceFiles();
    EXPECT_EQ(t.StartupDefs.Items, (Lines{"ERR2", "ERR1", ""}));
    for (TextTable* table : t.TextTables()) {
        if (table != &t.StartupDefs) {
            EXPECT_EQ(table->Count, 0);
        }
    }
    // An incomplete record ends the file.
    const std::string good = CompileDefinitionSource("[Startup]\nS1|one\nS2|two");
    const std::string tails[] = {
        good.substr(0, good.size() - 1),        // last record cut short
        good + std::string("\x02\x00\x00", 3),  // prefix cut short
        good + "\xff\xff\xff\x7f" + "abc",      // huge length
        good + std::string("\xff\xff\xff\xff", 4) + CompileDefinitionSource("S3|three"),
        good + std::string(4, '\0') + CompileDefinitionSource("S3|three"),  // n = 0 is skipped
    };
    const Lines expected[] = {{"S1|one", ""},
                              {"S1|one", "S2|two", ""},
                              {"S1|one", "S2|two", ""},
                              {"S1|one", "S2|two", ""},
                              {"S1|one", "S2|two", "S3|three", ""}};
    for (std::size_t i = 0; i < std::size(tails); ++i) {
        files.addFile(kDefs, tails[i]);
        LoadReferenceFiles();
        EXPECT_EQ(t.StartupDefs.Items, expected[i]) << "case " << i;
    }
}

// --- Files made elsewhere ---------------------------------------------------------------------

// Made by tests/data/make_defs_compat.py from the format and the classic generator alone.
TEST_F(DefinitionLoaderTest, ReadsAFileEncipheredIndependently) {
    const std::string bytes = ReadSourceFile("tests/data/defs_compat.dat");
    ASSERT_FALSE(bytes.empty());
    files.addFile(kDefs, bytes);
    LoadReferenceFiles();
    EXPECT_EQ(App().DefinitionDate, "2026.11.01");
    EXPECT_EQ(t.FileDefs.Items, (Lines{"", "alpha.dll|Compat.Alpha", "beta.exe|Compat.Beta"}));
    EXPECT_EQ(Md5s(), (Lines{"0 |", "48 0f343b0931126a20f133d67c2b018a3b|Compat.Md5"}));
    EXPECT_EQ(t.Md5Index.Count, 1);
    EXPECT_EQ(t.RegistryDefs.Items, (Lines{"ERR2", "ERR1", ""}));
}

TEST_F(DefinitionLoaderTest, SampleDefinitionsFillEveryTable) {
    files.addFile(kStatic, CompileDefinitionSource(ReadSourceFile("definitions/ovsstatic.txt")));
    files.addFile(kDefs, CompileDefinitionSource(ReadSourceFile("definitions/ovsdef.txt")));
    LoadReferenceFiles();
    for (TextTable* table : t.TextTables()) {
        if (table != &t.Md5Defs) {
            EXPECT_GT(table->Count, 0);
        }
    }
    EXPECT_GT(t.Md5Index.Count, 0);
    EXPECT_EQ(ErrorLog(), "");
    // Long loads keep the window alive.
    EXPECT_GT(host.Yields(), t.FileDefs.Count + t.Md5Index.Count);
}

}  // namespace
}  // namespace orvex
