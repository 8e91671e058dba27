// Win32Files_test.cpp: the kernel32 file back-end on Wine's real file system, with the
// classic failure numbers of missing, locked and protected files.
#include "platform/win32/Win32Files.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "support/FailureOf.h"

namespace orvex::platform::win32 {
namespace {

using testing::FailureOf;

class Win32FilesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        char temp[MAX_PATH + 1];
        ASSERT_GT(GetTempPathA(sizeof temp, temp), 0u);
        folder = std::string(temp) + "OrvexFilesTest" + std::to_string(GetCurrentProcessId());
        RemoveAll(folder);
        files.createFolder(folder);
    }
    void TearDown() override { RemoveAll(folder); }

    static void RemoveAll(const std::string& path) {
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA((path + "\\*").c_str(), &found);
        if (search != INVALID_HANDLE_VALUE) {
            do {
                std::string name = found.cFileName;
                if (name == "." || name == "..") continue;
                std::string child = path + "\\" + name;
                SetFileAttributesA(child.c_str(), FILE_ATTRIBUTE_NORMAL);
                if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
                    RemoveAll(child);
                } else {
                    DeleteFileA(child.c_str());
                }
            } while (FindNextFileA(search, &found));
            FindClose(search);
        }
        RemoveDirectoryA(path.c_str());
    }

    std::string Path(const std::string& name) const { return folder + "\\" + name; }

    void Write(const std::string& path, const std::string& bytes) {
        files.open(path, OpenMode::Write)->write(bytes.data(), bytes.size());
    }

    std::string Read(const std::string& path) {
        auto stream = files.open(path, OpenMode::Read);
        std::string bytes(stream->size() + 1, '\0');
        bytes.resize(stream->read(bytes.data(), bytes.size()));
        return bytes;
    }

    Win32Files files;
    std::string folder;
};

TEST_F(Win32FilesTest, LongNamedFileHasAShortNameThatLeadsBack) {
    const std::string longName = Path("A rather long file name.text");
    Write(longName, "x");
    const std::string shortName = files.shortPath(longName);
    const std::string leaf = shortName.substr(shortName.rfind('\\') + 1);
    EXPECT_NE(leaf.find('~'), std::string::npos) << shortName;
    EXPECT_LE(leaf.size(), 12u);
    EXPECT_TRUE(files.fileExists(shortName));
    EXPECT_EQ(files.longPath(shortName), files.longPath(longName));
    EXPECT_EQ(files.longPath(shortName).substr(files.longPath(shortName).rfind('\\') + 1),
              "A rather long file name.text");

    std::vector<DirEntry> entries = files.list(folder);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, "A rather long file name.text");
    EXPECT_EQ(entries[0].shortName, leaf);
}

TEST_F(Win32FilesTest, MissingFilesAndFoldersRaiseTheirClassicNumbers) {
    const std::string missingFile = Path("nothing.txt");
    const std::string inMissingFolder = Path("no folder\\nothing.txt");
    EXPECT_EQ(FailureOf([&] { files.open(missingFile, OpenMode::Read); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.open(inMissingFolder, OpenMode::Read); }),
              failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.open(inMissingFolder, OpenMode::Write); }),
              failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.shortPath(missingFile); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.attributes(missingFile); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.attributes(inMissingFolder); }), failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.remove(missingFile); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.copy(missingFile, Path("b"), true); }), failure::kFileNotFound);
    EXPECT_EQ(FailureOf([&] { files.list(Path("no folder")); }), failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.createFolder(Path("no folder\\sub")); }),
              failure::kPathNotFound);
    EXPECT_EQ(FailureOf([&] { files.open(std::string("a\0b", 3), OpenMode::Read); }),
              failure::kBadFileName);
    EXPECT_FALSE(files.fileExists(missingFile));
    EXPECT_FALSE(files.folderExists(Path("no folder")));
}

TEST_F(Win32FilesTest, LockedFileRaisesPermissionDenied) {
    const std::string path = Path("locked.dat");
    Write(path, "data");
    HANDLE exclusive = CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                   OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(exclusive, INVALID_HANDLE_VALUE);
    EXPECT_EQ(FailureOf([&] { files.open(path, OpenMode::Read); }), failure::kPermissionDenied);
    EXPECT_EQ(FailureOf([&] { files.open(path, OpenMode::Append); }), failure::kPermissionDenied);
    EXPECT_EQ(FailureOf([&] { files.copy(path, Path("copy.dat"), true); }),
              failure::kPermissionDenied);
    EXPECT_EQ(FailureOf([&] { files.remove(path); }), failure::kPermissionDenied);
    CloseHandle(exclusive);
    EXPECT_EQ(Read(path), "data");
}

TEST_F(Win32FilesTest, AttributesAreSetAndCleared) {
    const std::string path = Path("guarded.txt");
    Write(path, "x");
    files.setAttributes(path, attr::kReadOnly | attr::kHidden);
    EXPECT_EQ(files.attributes(path) & (attr::kReadOnly | attr::kHidden),
              attr::kReadOnly | attr::kHidden);
    EXPECT_EQ(FailureOf([&] { files.remove(path); }), failure::kPathFileAccess);

    files.setAttributes(path, attr::kNormal);
    EXPECT_EQ(files.attributes(path) & (attr::kReadOnly | attr::kHidden), 0u);
    files.remove(path);
    EXPECT_FALSE(files.fileExists(path));
    EXPECT_NE(files.attributes(folder) & attr::kDirectory, 0u);
}

TEST_F(Win32FilesTest, ReplaceSwapsTheTargetInOneStep) {
    const std::string target = Path("store.dat");
    const std::string fresh = Path("store.tmp");
    Write(fresh, "first");
    files.replace(fresh, target);  // no target yet
    EXPECT_EQ(Read(target), "first");
    Write(fresh, "second, longer");
    files.replace(fresh, target);
    EXPECT_EQ(Read(target), "second, longer");
    EXPECT_FALSE(files.fileExists(fresh));
    EXPECT_EQ(FailureOf([&] { files.replace(fresh, target); }), failure::kFileNotFound);
}

TEST_F(Win32FilesTest, StreamsHonourTheirOpenMode) {
    const std::string path = Path("log.txt");
    Write(path, "abcdef");
    {
        auto append = files.open(path, OpenMode::Append);
        EXPECT_EQ(append->position(), 6u);
        append->write("gh", 2);
        // Back at the start, writes overwrite and what lies beyond stays.
        append->seek(0);
        append->write("XY", 2);
    }
    EXPECT_EQ(Read(path), "XYcdefgh");
    {
        auto both = files.open(path, OpenMode::ReadWrite);
        EXPECT_EQ(both->position(), 0u);
        both->seek(2);
        both->write("Z", 1);
    }
    EXPECT_EQ(Read(path), "XYZdefgh");
    Write(path, "new");
    EXPECT_EQ(Read(path), "new");
    EXPECT_EQ(files.length(path), 3u);

    auto reader = files.open(path, OpenMode::Read);
    EXPECT_EQ(FailureOf([&] { reader->write("x", 1); }), failure::kBadFileMode);
    auto writer = files.open(Path("out.txt"), OpenMode::Write);
    char byte;
    EXPECT_EQ(FailureOf([&] { writer->read(&byte, 1); }), failure::kBadFileMode);
}

TEST_F(Win32FilesTest, CopyRespectsOverwriteAndFoldersAreMade) {
    Write(Path("a.txt"), "A");
    Write(Path("b.txt"), "B");
    EXPECT_EQ(FailureOf([&] { files.copy(Path("a.txt"), Path("b.txt"), false); }),
              failure::kFileExists);
    EXPECT_EQ(Read(Path("b.txt")), "B");
    files.copy(Path("a.txt"), Path("b.txt"), true);
    EXPECT_EQ(Read(Path("b.txt")), "A");

    files.createFolder(Path("Sub"));
    EXPECT_TRUE(files.folderExists(Path("Sub")));
    EXPECT_FALSE(files.fileExists(Path("Sub")));
    EXPECT_EQ(FailureOf([&] { files.createFolder(Path("Sub")); }), failure::kFileExists);
    EXPECT_TRUE(files.list(Path("Sub")).empty());

    std::vector<DirEntry> entries = files.list(folder + "\\");
    std::vector<std::string> names;
    for (const DirEntry& entry : entries)
        names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"Sub", "a.txt", "b.txt"}));
}

TEST_F(Win32FilesTest, DrivesIncludeTheFixedSystemDisk) {
    std::vector<std::string> drives = files.drives();
    ASSERT_FALSE(drives.empty());
    EXPECT_NE(std::find(drives.begin(), drives.end(), "C:\\"), drives.end());
    EXPECT_TRUE(std::is_sorted(drives.begin(), drives.end()));
    EXPECT_EQ(files.driveType("C:\\"), drivetype::kFixed);
    EXPECT_EQ(files.driveType("C:"), drivetype::kFixed);
    EXPECT_GT(files.freeSpace("C:\\"), 0u);
}

}  // namespace
}  // namespace orvex::platform::win32
