// FileScan_test.cpp: judging one file (digest before name, the extension gate, the result
// codes of the [Exclusion] lines, the program's own folder), the digest text, and the
// folder walk: its order, its stops, vanished files and trees deeper than a call stack.
#include "scan/FileScan.h"

#include "pages/ScanPage.h"
#include "platform/Md5.h"
#include "scan/ScanFixture.h"

namespace orvex {
namespace {

using V = std::vector<std::string>;

const std::string kBadBytes = "bytes of a known bad file";

class FileScanTest : public testing::ScanTest {
  protected:
    FileScanTest() {
        LoadDefinitions("Ver=11/22/2026\n[MD5]\n" + platform::Md5Hex(kBadBytes) +
                        "|HashThreat\n[End]\n"
                        "[Files]\n"
                        "NameThreat|named.exe\nNameThreat|both.exe\nTextThreat|named.txt\n"
                        "FirstThreat|twice.dll\nSecondThreat|twice.dll\n"
                        "SuspectThreat|maybe.dat\nLoneThreat|unlisted.exe\n"
                        "GoneThreat|gone.exe\nTildeThreat|tilde.exe\n[End]\n"
                        "[Exclusion]\n"
                        "named.exe|namethreat|||0|1\nboth.exe|namethreat|||0|1\n"
                        "named.txt|textthreat|||3|0\ntwice.dll||||1|1\n"
                        "maybe.dat|suspectthreat|||4|2\n"
                        "gone.exe|gonethreat|<10||3|1\n"
                        "tilde.exe|tildethreat||longfoldername|3|1\n[End]\n");
    }

    VbBool Judge(const std::string& name, const std::string& folder, VbBool testOnly = VbFalse) {
        return ScumFile(name, folder, testOnly);
    }
};

TEST_F(FileScanTest, JustExtTakesTheTextBehindTheLastDotInLowerCase) {
    EXPECT_EQ(
        (V{JustExt("Setup.EXE"), JustExt("archive.tar.gz"), JustExt("README"), JustExt("ends.")}),
        (V{"exe", "gz", "", ""}));
}

// Read in chunks, in lower-case hex; a file it cannot read says FILE NOT FOUND.
TEST_F(FileScanTest, Md5FileReadsInChunksAndGivesLowerCaseHex) {
    std::string big(300 * 1024 + 7, '\0');
    for (std::size_t i = 0; i < big.size(); ++i)
        big[i] = static_cast<char>(i * 31 % 251);
    files.addFile("C:\\t\\big.bin", big);
    files.addFile("C:\\t\\empty.bin", "");
    EXPECT_EQ(MD5File("C:\\t\\big.bin"), platform::Md5Hex(big));
    EXPECT_EQ(MD5File("C:\\t\\empty.bin"), "d41d8cd98f00b204e9800998ecf8427e");
    files.addFile("C:\\t\\locked.exe", kBadBytes);
    files.lock("C:\\t\\locked.exe");
    for (const std::string path : {"C:\\t\\missing.exe", "C:\\t\\locked.exe", "C:\\t"}) {
        const std::string text = MD5File(path);
        EXPECT_NE(text.find("FILE NOT FOUND"), std::string::npos) << path;
        EXPECT_EQ(text.size(), 32u) << path;
    }
}

// A digest hit decides alone (both.exe is also listed by name) and is confirmed; a .txt is
// not hashed, but its name still counts; the program's own folder is never judged.
TEST_F(FileScanTest, OnlyListedExtensionsAreHashedAndADigestHitDecidesAlone) {
    for (const char* name : {"both.exe", "x.txt", "x.kwd", "named.txt"})
        files.addFile(std::string("C:\\t\\") + name, kBadBytes);
    files.addFile("C:\\Program Files\\Orvex\\sub\\both.exe", kBadBytes);
    EXPECT_EQ((std::vector<VbBool>{Judge("both.exe", "C:\\t\\"), Judge("x.txt", "C:\\t\\"),
                                   Judge("x.kwd", "C:\\t\\"), Judge("named.txt", "C:\\t\\"),
                                   Judge("both.exe", "c:\\program files\\ORVEX\\sub\\"),
                                   Judge("named.exe", "C:\\Program Files\\Orvex\\")}),
              (std::vector<VbBool>{VbTrue, VbFalse, VbTrue, VbTrue, VbFalse, VbFalse}));
    EXPECT_EQ(Findings(), (V{"HashThreat|FileSystem|Confirmed|C:\\t\\|both.exe",
                             "HashThreat|FileSystem|Confirmed|C:\\t\\|x.kwd",
                             "TextThreat|FileSystem|Confirmed|C:\\t\\|named.txt"}));
}

// No [Exclusion] line means code 4; a test-only call still reports a suspect, but not a
// confirmed find; one name under two threats gives a row for each; names compare exactly.
TEST_F(FileScanTest, TheResultCodesDecideWhatANameHitIs) {
    for (const char* name : {"named.exe", "maybe.dat", "unlisted.exe", "twice.dll"})
        files.addFile(std::string("C:\\t\\") + name, "harmless");
    const std::string t = "C:\\t\\";
    EXPECT_EQ((std::vector<VbBool>{Judge("unlisted.exe", t), Judge("named.exe", t, VbTrue),
                                   Judge("maybe.dat", t, VbTrue), Judge("named.exe", t),
                                   Judge("twice.dll", t), Judge("NAMED.EXE", t)}),
              (std::vector<VbBool>{VbFalse, VbTrue, VbTrue, VbTrue, VbTrue, VbFalse}));
    EXPECT_EQ(Findings(), (V{"SuspectThreat|FileSystem|Suspect|C:\\t\\|maybe.dat",
                             "NameThreat|FileSystem|Confirmed|C:\\t\\|named.exe",
                             "FirstThreat|FileSystem|Confirmed|C:\\t\\|twice.dll",
                             "SecondThreat|FileSystem|Confirmed|C:\\t\\|twice.dll"}));
}

TEST_F(FileScanTest, AShortFolderNameMeetsTheFolderTestInItsLongForm) {
    files.addFile("C:\\LongFolderName\\tilde.exe", "x");
    const std::string shortFolder = files.shortPath("C:\\LongFolderName") + "\\";
    ASSERT_NE(shortFolder.find('~'), std::string::npos);
    EXPECT_EQ(Judge("tilde.exe", shortFolder), VbTrue);
    EXPECT_EQ(Findings(), (V{"TildeThreat|FileSystem|Confirmed|" + shortFolder + "|tilde.exe"}));
}

TEST_F(FileScanTest, TheWalkVisitsSubfoldersBeforeFilesAndCountsEachFile) {
    LngArray()[706] = "Files checked: ";
    for (const char* path : {"C:\\top\\z1.exe", "C:\\top\\b\\x.exe", "C:\\top\\a\\y.exe",
                             "C:\\top\\a\\deeper\\w.exe", "C:\\top\\a\\plain.doc"})
        files.addFile(path, kBadBytes);
    colFiles().LoadFiles("c:", "\\top");
    V found;
    for (const ScumRow& row : Rows())
        found.push_back(row.location + row.item);
    EXPECT_EQ(found, (V{"c:\\top\\a\\deeper\\w.exe", "c:\\top\\a\\y.exe", "c:\\top\\b\\x.exe",
                        "c:\\top\\z1.exe"}));
    EXPECT_EQ(App().ItemsScanned, 5);
    EXPECT_EQ(frmscan().lbl3.Caption, "Files checked: 5");
}

TEST_F(FileScanTest, FoldersThatCannotBeReadAreNothingToTheWalk) {
    files.addFile("D:\\x\\both.exe", kBadBytes);
    files.setDriveReady("D:\\", false);
    colFiles walker;
    walker.LoadFiles("d:", "");
    walker.LoadFiles("c:", "\\no such folder");
    walker.LoadFiles("c:", "\\Data\\ovsdef.dat");  // a file, not a folder
    EXPECT_TRUE(Rows().empty());
    EXPECT_EQ(App().ItemsScanned, 0);
    EXPECT_EQ(walker.Count(), 0);
}

TEST_F(FileScanTest, AFileThatVanishesBeforeItsJudgmentHasNoDigestAndSizeZero) {
    // 100 bytes fail the "<10" size test; once gone, its size counts as 0.
    files.addFile("C:\\v\\gone.exe", std::string(100, 'x'));
    colFiles().LoadFiles("C:", "\\v");
    EXPECT_TRUE(Rows().empty());

    // The yield before the file's judgment is the first of the walk (no subfolders).
    host.AtYield(host.Yields() + 1, [&] { files.remove("C:\\v\\gone.exe"); });
    colFiles().LoadFiles("C:", "\\v");
    EXPECT_EQ(Findings(), (V{"GoneThreat|FileSystem|Confirmed|C:\\v\\|gone.exe"}));
}

TEST_F(FileScanTest, AStopInMidFolderEndsTheWholeWalk) {
    for (const char* path : {"C:\\s\\a\\f1.exe", "C:\\s\\a\\f2.exe", "C:\\s\\a\\f3.exe",
                             "C:\\s\\b\\f4.exe", "C:\\s\\later.exe"})
        files.addFile(path, kBadBytes);
    host.OnEveryYield([&](int) {
        if (ScumListOfRun().count() == 1) App().StopRequested = VbTrue;
    });
    colFiles().LoadFiles("C:", "\\s");
    EXPECT_EQ(Findings(), (V{"HashThreat|FileSystem|Confirmed|C:\\s\\a\\|f1.exe"}));
    EXPECT_EQ(App().ItemsScanned, 1);
}

TEST_F(FileScanTest, ATreeTenThousandLevelsDeepIsWalkedWithoutExhaustingTheStack) {
#if defined(__SANITIZE_ADDRESS__)
    // The memory back-end resolves every path from the root, so the tree costs the square
    // of its depth; under the sanitizers a shallower tree still checks the walk's memory.
    constexpr int kDepth = 2000;
#else
    constexpr int kDepth = 10000;
#endif
    std::string path = "C:\\deep";
    V folders;
    for (int i = 0; i < kDepth; ++i) {
        path += "\\d";
        folders.push_back(path);
    }
    files.addFile(path + "\\both.exe", kBadBytes);
    colFiles().LoadFiles("C:", "\\deep");
    EXPECT_EQ(Findings(), (V{"HashThreat|FileSystem|Confirmed|" + path + "\\|both.exe"}));
    // Taken down from the bottom, so that the memory back-end's own teardown stays shallow.
    files.remove(path + "\\both.exe");
    for (auto it = folders.rbegin(); it != folders.rend(); ++it)
        files.remove(*it);
}

}  // namespace
}  // namespace orvex
