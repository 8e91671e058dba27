// PosixFiles_test.cpp: what only the POSIX file system does: the path mapping, byte-order
// listings with attributes from modes and dots, links and special files.
#include "platform/posix/PosixFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <tuple>
#include <vector>

#include "platform/posix/PosixTestFolder.h"
#include "support/FailureOf.h"

namespace orvex::platform {
namespace {

using orvex::testing::FailureOf;
using V = std::vector<std::string>;
using namespace std::string_literals;

TEST(PosixPathMap, DriveCMapsOntoTheRootAndNothingElseDoes) {
    using S = std::optional<std::string>;
    enum Way { kToNative = 1, kToEngine = 2, kBoth = 3 };
    const std::tuple<const char*, S, S, Way> cases[] = {
        {"/", "C:\\home\\x\\a.txt", "/home/x/a.txt", kBoth},
        {"/", "C:\\", "/", kBoth},
        {"/srv/c/", "C:\\Windows\\System32", "/srv/c/Windows/System32", kBoth},
        {"/", "C:", "/", kToNative},
        {"/", "\\etc\\hosts", "/etc/hosts", kToNative},
        {"/srv/c", "C:\\a\\..\\..\\..\\etc\\passwd", "/srv/c/etc/passwd", kToNative},  // no higher
        {"/", "D:\\x", S(), kToNative},
        {"/", "\\\\server\\share\\x", S(), kToNative},
        {"/", "C:\\a\0b"s, S(), kToNative},
        {"/", "C:\\tmp\\x", "/tmp/./a/../x/", kToEngine},
        {"/srv/c/", "C:\\", "/srv/c", kToEngine},
        {"/srv/c/", S(), "/srv/cd/a", kToEngine},  // a longer name, not a subfolder
        {"/srv/c/", S(), "/etc", kToEngine},
    };
    for (const auto& [root, engine, native, way] : cases) {
        EXPECT_EQ(way & kToNative ? PathMap(root).toNative(*engine) : native, native)
            << engine.value_or("");
        EXPECT_EQ(way & kToEngine ? PathMap(root).toEngine(*native) : engine, engine)
            << native.value_or("");
    }
    char cwd[4096];
    ASSERT_NE(::getcwd(cwd, sizeof cwd), nullptr);
    const auto expected = EnginePathFromNative(std::string(cwd) + "/sub/x.txt");
    EXPECT_EQ(EnginePathFromNative("sub/x.txt"), expected);
    EXPECT_EQ(EnginePathFromNative("./sub/../sub/x.txt"), expected);
}

class PosixFilesTest : public ::testing::Test {
  protected:
    orvex::testing::PosixTestFolder folder;
    PosixFiles files{folder.path()};
};

TEST_F(PosixFilesTest, OneDriveListedInByteOrderWithAttributesFromModesAndDots) {
    for (const char* name : {"b.txt", "B.txt", "a.txt", ".profile"})
        folder.write(name, name[0] == 'a' ? "aaaa" : "");
    folder.makeFolder("sub");
    ::chmod((folder / "a.txt").c_str(), 0444);
    std::vector<std::tuple<std::string, std::uint32_t, std::uint64_t>> entries;
    for (const auto& e : files.list("C:\\"))
        entries.emplace_back(e.name + e.shortName, e.attributes, e.size);
    EXPECT_EQ(entries, (decltype(entries){{".profile", attr::kHidden, 0},
                                          {"B.txt", attr::kNormal, 0},
                                          {"a.txt", attr::kReadOnly, 4},
                                          {"b.txt", attr::kNormal, 0},
                                          {"sub", attr::kDirectory, 0}}));
    EXPECT_EQ(files.drives(), V{"C:\\"});
}

// A link to a folder would make a walk go round for ever; it must not look like a folder.
TEST_F(PosixFilesTest, LinkedFoldersAreNotFollowedSoAWalkEnds) {
    folder.makeFolder("top");
    folder.makeFolder("top/inner");
    folder.write("top/inner/data.bin", "12345");
    for (const auto& [target, link] :
         {std::pair("..", "up"), {"data.bin", "alias"}, {"nowhere", "dangling"}})
        ASSERT_EQ(::symlink(target, (folder / "top/inner/" + link).c_str()), 0);
    for (const bool namesOnly : {false, true}) {
        V walked;
        std::function<void(const std::string&)> walk = [&](const std::string& path) {
            ASSERT_LT(walked.size(), 100u) << "the walk went round in a loop";
            for (const auto& e : namesOnly ? files.listNames(path) : files.list(path)) {
                walked.push_back(path + e.name);
                if (e.isFolder()) walk(path + e.name + "\\");
            }
        };
        walk("C:\\top\\");
        EXPECT_EQ(walked, (V{"C:\\top\\inner", "C:\\top\\inner\\alias", "C:\\top\\inner\\dangling",
                             "C:\\top\\inner\\data.bin", "C:\\top\\inner\\up"}))
            << namesOnly;
    }
    EXPECT_EQ(files.list("C:\\top\\inner")[0].size, 5u);  // a link to a file gives its size
    // A path through the link is still a real folder when asked for by name.
    EXPECT_TRUE(files.folderExists("C:\\top\\inner\\up\\inner"));
}

// Special files must not hang a scan that opens everything it lists.
TEST_F(PosixFilesTest, FifosFoldersAndUnreadableFilesAreRefusedWithoutBlocking) {
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0644), 0);
    folder.makeFolder("dir");
    folder.write("secret", "x");
    ::chmod((folder / "secret").c_str(), 0);
    const auto start = std::chrono::steady_clock::now();
    // Root reads past permission bits.
    for (const char* path : {"C:\\pipe", "C:\\dir", ::geteuid() != 0 ? "C:\\secret" : "C:\\dir"})
        EXPECT_EQ(FailureOf([&] { files.open(path, OpenMode::Read); }), 75) << path;
    EXPECT_NE(FailureOf([&] { files.open("C:\\pipe", OpenMode::Append); }), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace orvex::platform
