// PosixFiles_test.cpp: what only the POSIX file system does: the path mapping, byte-order
// listings with attributes from modes and dots, links and special files.
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

TEST_F(PosixFilesTest, UnreadableFileIsFailure75) {
    if (::geteuid() == 0) GTEST_SKIP() << "root reads past permission bits";
    folder.write("secret", "x");
    ::chmod((folder / "secret").c_str(), 0);
    EXPECT_EQ(FailureOf([&] { files.open("C:\\secret", OpenMode::Read); }),
              failure::kPathFileAccess);
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

TEST_F(PosixFilesTest, OneFixedDriveC) {
    EXPECT_EQ(files.drives(), std::vector<std::string>{"C:\\"});
    EXPECT_EQ(files.longPath("C:\\"), "C:\\");
}

}  // namespace
}  // namespace orvex::platform
