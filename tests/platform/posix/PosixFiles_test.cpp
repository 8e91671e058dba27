// PosixFiles_test.cpp: the POSIX file system behind Windows paths, on a real scratch tree.
#include "platform/posix/PosixFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <vector>

#include "platform/posix/PosixTestFolder.h"
#include "support/FailureOf.h"

namespace orvex::platform {
namespace {

using orvex::testing::FailureOf;
using orvex::testing::PosixTestFolder;

std::vector<std::string> Names(const std::vector<DirEntry>& entries) {
    std::vector<std::string> names;
    for (const auto& e : entries)
        names.push_back(e.name);
    return names;
}

std::string ReadAll(FileSystem& fs, const std::string& path) {
    auto stream = fs.open(path, OpenMode::Read);
    std::string bytes(stream->size(), '\0');
    bytes.resize(stream->read(bytes.data(), bytes.size()));
    return bytes;
}

void Write(FileSystem& fs, const std::string& path, OpenMode mode, const std::string& bytes) {
    fs.open(path, mode)->write(bytes.data(), bytes.size());
}

TEST(PosixPathMap, DriveCMapsOntoTheRootBothWays) {
    PathMap slash("/");
    EXPECT_EQ(slash.toNative("C:\\home\\x\\a.txt"), "/home/x/a.txt");
    EXPECT_EQ(slash.toNative("c:/home/x/"), "/home/x");
    EXPECT_EQ(slash.toNative("C:\\"), "/");
    EXPECT_EQ(slash.toNative("C:"), "/");
    EXPECT_EQ(slash.toNative("\\etc\\hosts"), "/etc/hosts");
    EXPECT_EQ(slash.toEngine("/tmp/x"), "C:\\tmp\\x");
    EXPECT_EQ(slash.toEngine("/"), "C:\\");
    EXPECT_EQ(slash.toEngine("/tmp/./a/../x/"), "C:\\tmp\\x");

    PathMap srv("/srv/c/");
    EXPECT_EQ(srv.root(), "/srv/c");
    EXPECT_EQ(srv.toNative("C:\\Windows\\System32"), "/srv/c/Windows/System32");
    EXPECT_EQ(srv.toEngine("/srv/c/a/b"), "C:\\a\\b");
    EXPECT_EQ(srv.toEngine("/srv/c"), "C:\\");
    EXPECT_EQ(srv.toEngine("/srv/cd/a"), std::nullopt);  // a longer name, not a subfolder
    EXPECT_EQ(srv.toEngine("/etc"), std::nullopt);
}

TEST(PosixPathMap, DotDotNeverClimbsAboveTheRoot) {
    PathMap srv("/srv/c");
    EXPECT_EQ(srv.toNative("C:\\a\\..\\..\\..\\etc\\passwd"), "/srv/c/etc/passwd");
    EXPECT_EQ(srv.toNative("C:\\..\\"), "/srv/c");
}

TEST(PosixPathMap, OtherDrivesNetworkPathsAndNulAreNotMapped) {
    PathMap slash("/");
    EXPECT_EQ(slash.toNative("D:\\x"), std::nullopt);
    EXPECT_EQ(slash.toNative("\\\\server\\share\\x"), std::nullopt);
    EXPECT_EQ(slash.toNative(std::string("C:\\a\0b", 6)), std::nullopt);
    EXPECT_EQ(slash.toNative("relative\\name.txt"), "relative/name.txt");
}

TEST(PosixPathMap, RelativeNativePathsStartAtTheCurrentFolder) {
    char cwd[4096];
    ASSERT_NE(::getcwd(cwd, sizeof cwd), nullptr);
    auto expected = EnginePathFromNative(std::string(cwd) + "/sub/x.txt");
    EXPECT_EQ(EnginePathFromNative("sub/x.txt"), expected);
    EXPECT_EQ(EnginePathFromNative("./sub/../sub/x.txt"), expected);
}

class PosixFilesTest : public ::testing::Test {
  protected:
    PosixTestFolder folder;
    PosixFiles files{folder.path()};
};

TEST_F(PosixFilesTest, ListsSortedByByteOrderWithSizesAndAttributes) {
    folder.write("b.txt", "bb");
    folder.write("B.txt", "B");
    folder.write("a.txt", "aaaa");
    folder.write(".profile", "");
    folder.makeFolder("sub");
    ::chmod((folder / "a.txt").c_str(), 0444);

    auto entries = files.list("C:\\");
    ASSERT_EQ(Names(entries),
              (std::vector<std::string>{".profile", "B.txt", "a.txt", "b.txt", "sub"}));
    EXPECT_EQ(entries[0].attributes, attr::kHidden);
    EXPECT_EQ(entries[1].attributes, attr::kNormal);
    EXPECT_EQ(entries[2].attributes, attr::kReadOnly);
    EXPECT_EQ(entries[2].size, 4u);
    EXPECT_EQ(entries[3].size, 2u);
    EXPECT_TRUE(entries[4].isFolder());
    EXPECT_EQ(entries[4].size, 0u);
    EXPECT_TRUE(entries[0].shortName.empty());
    EXPECT_EQ(Names(files.list("C:\\sub\\")), std::vector<std::string>{});
}

// A link to a folder would make a walk go round for ever; it must not look like a folder.
TEST_F(PosixFilesTest, LinkedFoldersAreNotFollowedSoAWalkEnds) {
    folder.makeFolder("top");
    folder.makeFolder("top/inner");
    folder.write("top/inner/data.bin", "12345");
    ASSERT_EQ(::symlink("..", (folder / "top/inner/up").c_str()), 0);
    ASSERT_EQ(::symlink("data.bin", (folder / "top/inner/alias").c_str()), 0);
    ASSERT_EQ(::symlink("nowhere", (folder / "top/inner/dangling").c_str()), 0);

    // Both listings: the full one, and the names and kinds a walk takes.
    for (const bool namesOnly : {false, true}) {
        std::vector<std::string> walked;
        std::function<void(const std::string&)> walk = [&](const std::string& path) {
            ASSERT_LT(walked.size(), 100u) << "the walk went round in a loop";
            for (const auto& e : namesOnly ? files.listNames(path) : files.list(path)) {
                walked.push_back(path + e.name);
                if (e.isFolder()) walk(path + e.name + "\\");
            }
        };
        walk("C:\\top\\");
        EXPECT_EQ(walked, (std::vector<std::string>{
                              "C:\\top\\inner", "C:\\top\\inner\\alias", "C:\\top\\inner\\dangling",
                              "C:\\top\\inner\\data.bin", "C:\\top\\inner\\up"}))
            << (namesOnly ? "names only" : "full");
    }
    auto inner = files.list("C:\\top\\inner");
    EXPECT_EQ(inner[0].size, 5u);  // a link to a file gives the file's size
    EXPECT_EQ(inner[1].attributes, attr::kNormal);
    EXPECT_FALSE(inner[3].isFolder());
    // A path through the link is still a real folder when asked for by name.
    EXPECT_TRUE(files.folderExists("C:\\top\\inner\\up\\inner"));
}

TEST_F(PosixFilesTest, MissingFileAndMissingFolderAreFailures53And76) {
    folder.makeFolder("here");
    EXPECT_EQ(FailureOf([&] { files.open("C:\\here\\none.txt", OpenMode::Read); }),
              failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.open("C:\\gone\\none.txt", OpenMode::Read); }),
              failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.open("C:\\gone\\new.txt", OpenMode::Write); }),
              failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.list("C:\\gone"); }), failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.attributes("C:\\here\\none.txt"); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.length("C:\\gone\\none.txt"); }), failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.shortPath("C:\\here\\none.txt"); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.remove("C:\\here\\none.txt"); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.createFolder("C:\\gone\\new"); }), failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.open("D:\\x.txt", OpenMode::Read); }), failure::kPathNotFound);
    folder.write("plain", "x");
    EXPECT_EQ(FailureOf([&] { files.list("C:\\plain"); }), failure::kPathNotFound);
}

TEST_F(PosixFilesTest, UnreadableFileIsFailure75) {
    if (::geteuid() == 0) GTEST_SKIP() << "root reads past permission bits";
    folder.write("secret", "x");
    ::chmod((folder / "secret").c_str(), 0);
    EXPECT_EQ(FailureOf([&] { files.open("C:\\secret", OpenMode::Read); }),
              failure::kPathFileAccess);
}

// As on Windows, a read-only file refuses writes, replacement and deletion from anyone.
TEST_F(PosixFilesTest, ReadOnlyFileRefusesChangesUntilTheAttributeIsCleared) {
    folder.write("locked.txt", "keep");
    folder.write("new.txt", "new");
    files.setAttributes("C:\\locked.txt", attr::kReadOnly);
    EXPECT_EQ(files.attributes("C:\\locked.txt"), attr::kReadOnly);
    EXPECT_EQ(FailureOf([&] { files.open("C:\\locked.txt", OpenMode::Write); }),
              failure::kPathFileAccess);
    EXPECT_EQ(FailureOf([&] { files.open("C:\\locked.txt", OpenMode::Append); }),
              failure::kPathFileAccess);
    EXPECT_EQ(FailureOf([&] { files.replace("C:\\new.txt", "C:\\locked.txt"); }),
              failure::kPathFileAccess);
    EXPECT_EQ(FailureOf([&] { files.remove("C:\\locked.txt"); }), failure::kPathFileAccess);
    EXPECT_EQ(folder.read("locked.txt"), "keep");

    files.setAttributes("C:\\locked.txt", attr::kNormal);
    EXPECT_EQ(files.attributes("C:\\locked.txt"), attr::kNormal);
    files.remove("C:\\locked.txt");
    EXPECT_FALSE(files.fileExists("C:\\locked.txt"));
}

TEST_F(PosixFilesTest, AppendStartsAtTheEndAndASeekOverwritesInPlace) {
    Write(files, "C:\\log.txt", OpenMode::Append, "hello world");
    {
        auto log = files.open("C:\\log.txt", OpenMode::Append);
        EXPECT_EQ(log->position(), 11u);
        log->seek(0);
        log->write("J", 1);
        EXPECT_EQ(log->position(), 1u);
        char byte;
        EXPECT_EQ(FailureOf([&] { log->read(&byte, 1); }), failure::kBadFileMode);
    }
    EXPECT_EQ(folder.read("log.txt"), "Jello world");
    Write(files, "C:\\log.txt", OpenMode::Append, "!");
    EXPECT_EQ(folder.read("log.txt"), "Jello world!");
}

TEST_F(PosixFilesTest, WriteTruncatesAndReadWriteKeepsTheBytes) {
    folder.write("f", "0123456789");
    {
        auto both = files.open("C:\\f", OpenMode::ReadWrite);
        EXPECT_EQ(both->position(), 0u);
        both->seek(4);
        both->write("xy", 2);
        both->seek(0);
        char head[3] = {};
        EXPECT_EQ(both->read(head, 2), 2u);
        EXPECT_EQ(std::string(head), "01");
        EXPECT_EQ(both->size(), 10u);
    }
    EXPECT_EQ(folder.read("f"), "0123xy6789");
    Write(files, "C:\\f", OpenMode::Write, "ab");
    EXPECT_EQ(ReadAll(files, "C:\\f"), "ab");
    auto reader = files.open("C:\\f", OpenMode::Read);
    char rest[8];
    reader->seek(1);
    EXPECT_EQ(reader->read(rest, sizeof rest), 1u);
    EXPECT_EQ(reader->read(rest, sizeof rest), 0u);
    EXPECT_EQ(FailureOf([&] { reader->write("z", 1); }), failure::kBadFileMode);
}

TEST_F(PosixFilesTest, ReplaceSwapsTheContentInOneStep) {
    folder.write("store.dat", "old");
    Write(files, "C:\\store.tmp", OpenMode::Write, "new content");
    files.replace("C:\\store.tmp", "C:\\store.dat");
    EXPECT_EQ(folder.read("store.dat"), "new content");
    EXPECT_FALSE(files.fileExists("C:\\store.tmp"));
    EXPECT_EQ(FailureOf([&] { files.replace("C:\\store.tmp", "C:\\store.dat"); }),
              failure::kFileNotFound);
    EXPECT_EQ(folder.read("store.dat"), "new content");
}

// Special files must not hang a scan that opens everything it lists.
TEST_F(PosixFilesTest, FifosAndFoldersAreRefusedWithoutBlocking) {
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0644), 0);
    folder.makeFolder("dir");
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(FailureOf([&] { files.open("C:\\pipe", OpenMode::Read); }), failure::kPathFileAccess);
    EXPECT_NE(FailureOf([&] { files.open("C:\\pipe", OpenMode::Append); }), 0);
    EXPECT_EQ(FailureOf([&] { files.open("C:\\dir", OpenMode::Read); }), failure::kPathFileAccess);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST_F(PosixFilesTest, CopyHonoursOverwriteAndRefusesToCopyOntoItself) {
    folder.write("a", "alpha");
    folder.write("b", "beta");
    EXPECT_EQ(FailureOf([&] { files.copy("C:\\a", "C:\\b", false); }), failure::kFileExists);
    EXPECT_EQ(folder.read("b"), "beta");
    files.copy("C:\\a", "C:\\b", true);
    EXPECT_EQ(folder.read("b"), "alpha");
    files.copy("C:\\a", "C:\\c", false);
    EXPECT_EQ(files.length("C:\\c"), 5u);
    EXPECT_EQ(FailureOf([&] { files.copy("C:\\a", "C:\\.\\a", true); }),
              failure::kPermissionDenied);
    EXPECT_EQ(folder.read("a"), "alpha");
}

TEST_F(PosixFilesTest, FoldersAreMadeAndRemovedOnlyWhenEmpty) {
    files.createFolder("C:\\made");
    EXPECT_TRUE(files.folderExists("C:\\made"));
    EXPECT_FALSE(files.fileExists("C:\\made"));
    EXPECT_EQ(files.attributes("C:\\made"), attr::kDirectory);
    EXPECT_EQ(FailureOf([&] { files.createFolder("C:\\made"); }), failure::kPathFileAccess);
    folder.write("made/x", "");
    EXPECT_EQ(FailureOf([&] { files.remove("C:\\made"); }), failure::kPathFileAccess);
    files.remove("C:\\made\\x");
    files.remove("C:\\made");
    EXPECT_FALSE(files.folderExists("C:\\made"));
}

TEST_F(PosixFilesTest, OneFixedDriveC) {
    EXPECT_EQ(files.drives(), std::vector<std::string>{"C:\\"});
    EXPECT_EQ(files.driveType("C:\\"), drivetype::kFixed);
    EXPECT_EQ(files.driveType("c:"), drivetype::kFixed);
    EXPECT_EQ(files.driveType("D:\\"), drivetype::kNoRoot);
    EXPECT_GT(files.freeSpace("C:\\"), 0u);
    EXPECT_EQ(files.longPath("C:\\"), "C:\\");
}

}  // namespace
}  // namespace orvex::platform
