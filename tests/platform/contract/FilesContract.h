// FilesContract.h: what every file back-end does as kernel32 does, on a scratch folder of
// its maker (files(), folder(), lock(path, on) for a file another program holds open).
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/contract/Contract.h"
#include "support/FailureOf.h"

namespace orvex::testing {

using platform::OpenMode;
using platform::attr::kDirectory;
using platform::attr::kHidden;
using platform::attr::kReadOnly;

inline std::string ReadAll(platform::FileSystem& fs, const std::string& path) {
    auto stream = fs.open(path, OpenMode::Read);
    std::string bytes(stream->size() + 1, '\0');
    bytes.resize(stream->read(bytes.data(), bytes.size()));
    return bytes;
}

template <class Maker>
class FilesContract : public ContractTest<Maker> {
  protected:
    std::string at(std::string_view name) {
        return this->maker.folder() + "\\" + std::string(name);
    }
    void put(std::string_view name, std::string_view bytes, OpenMode mode = OpenMode::Write) {
        fs.open(at(name), mode)->write(bytes.data(), bytes.size());
    }
    std::string get(std::string_view name) { return ReadAll(fs, at(name)); }
    std::vector<std::string> sortedNames(const std::vector<platform::DirEntry>& entries) {
        std::vector<std::string> names;
        for (const auto& e : entries)
            names.push_back(e.name + (e.isFolder() ? "\\" : ""));
        std::sort(names.begin(), names.end());
        return names;
    }
    // Each call with the failure number it must raise.
    void expectFailures(const std::vector<std::pair<std::function<void()>, int>>& cases) {
        for (std::size_t i = 0; i < cases.size(); ++i)
            EXPECT_EQ(FailureOf(cases[i].first), cases[i].second) << "case " << i;
    }

    platform::FileSystem& fs = this->maker.files();
};

TYPED_TEST_SUITE_P(FilesContract);

TYPED_TEST_P(FilesContract, MissingAndMisnamedThingsRaiseTheirClassicNumbers) {
    auto& fs = this->fs;
    const std::string file = this->at("none.txt"), inGone = this->at("gone\\none.txt");
    this->put("here.txt", "x");
    this->expectFailures({
        {[&] { fs.open(file, OpenMode::Read); }, 53},
        {[&] { fs.open(inGone, OpenMode::Read); }, 76},
        {[&] { fs.open(inGone, OpenMode::Write); }, 76},
        {[&] { fs.open(this->maker.folder(), OpenMode::Read); }, 75},
        {[&] { fs.open(std::string("C:\\a\0b", 6), OpenMode::Read); }, 52},
        {[&] { fs.length(file); }, 53},
        {[&] { fs.length(inGone); }, 76},
        {[&] { fs.attributes(file); }, 53},
        {[&] { fs.attributes(inGone); }, 76},
        {[&] { fs.shortPath(file); }, 53},
        {[&] { fs.remove(file); }, 53},
        {[&] { fs.copy(file, this->at("b"), true); }, 53},
        {[&] { fs.copy(this->at("here.txt"), inGone, true); }, 76},
        {[&] { fs.replace(file, this->at("here.txt")); }, 53},
        {[&] { fs.list(this->at("gone")); }, 76},
        {[&] { fs.createFolder(this->at("gone\\sub")); }, 76},
    });
    EXPECT_FALSE(fs.fileExists(file));
    EXPECT_FALSE(fs.folderExists(this->at("gone")));
    EXPECT_FALSE(fs.fileExists(std::string("C:\\a\0b", 6)));
}

TYPED_TEST_P(FilesContract, MissingDrivesAndFoldersOnTheWayAreMissingPaths) {
    auto& fs = this->fs;
    this->put("here.txt", "x");
    this->expectFailures({
        {[&] { fs.open("Q:\\none.txt", OpenMode::Read); }, 76},
        {[&] { fs.shortPath(this->at("gone\\none.txt")); }, 76},
        {[&] { fs.list(this->at("here.txt")); }, 76},
    });
}

TYPED_TEST_P(FilesContract, StreamsKeepToTheirMode) {
    this->put("f.txt", "0123456789");
    {
        auto both = this->fs.open(this->at("f.txt"), OpenMode::ReadWrite);
        EXPECT_EQ(both->position(), 0u);
        both->seek(4);
        both->write("xy", 2);
        both->seek(0);
        char head[2];
        EXPECT_EQ(both->read(head, 2), 2u);
        EXPECT_EQ(std::string(head, 2), "01");
        EXPECT_EQ(both->size(), 10u);
        both->seek(20);
        EXPECT_EQ(both->read(head, 1), 0u);
    }
    EXPECT_EQ(this->get("f.txt"), "0123xy6789");
    {
        auto append = this->fs.open(this->at("f.txt"), OpenMode::Append);
        EXPECT_EQ(append->position(), 10u);
        append->write("!", 1);
        append->seek(0);  // back at the start, writes overwrite
        append->write("AB", 2);
        EXPECT_EQ(append->position(), 2u);
        char byte;
        EXPECT_EQ(FailureOf([&] { append->read(&byte, 1); }), 54);
    }
    EXPECT_EQ(this->get("f.txt"), "AB23xy6789!");
    this->put("f.txt", "ab");
    EXPECT_EQ(this->get("f.txt"), "ab");
    EXPECT_EQ(this->fs.length(this->at("f.txt")), 2u);
    auto reader = this->fs.open(this->at("f.txt"), OpenMode::Read);
    EXPECT_EQ(FailureOf([&] { reader->write("z", 1); }), 54);
    auto writer = this->fs.open(this->at("w.txt"), OpenMode::Write);
    char byte;
    EXPECT_EQ(FailureOf([&] { writer->read(&byte, 1); }), 54);
    this->put("rw.txt", "n", OpenMode::ReadWrite);
    this->put("ap.txt", "a", OpenMode::Append);
    EXPECT_EQ(this->get("rw.txt") + this->get("ap.txt"), "na");
}

TYPED_TEST_P(FilesContract, SeekPastTheEndFillsTheGapWithZeros) {
    auto stream = this->fs.open(this->at("gap.bin"), OpenMode::Write);
    stream->seek(3);
    stream->write("z", 1);
    stream->flush();
    EXPECT_EQ(this->get("gap.bin"), std::string("\0\0\0z", 4));
}

TYPED_TEST_P(FilesContract, ReadOnlyFilesRefuseDeleteUntilTheAttributeIsCleared) {
    auto& fs = this->fs;
    const std::string ro = this->at("ro.txt");
    this->put("ro.txt", "keep");
    fs.setAttributes(ro, kReadOnly);
    EXPECT_EQ(fs.attributes(ro) & (kReadOnly | kDirectory), kReadOnly);
    EXPECT_EQ(FailureOf([&] { fs.remove(ro); }), 75);
    EXPECT_EQ(this->get("ro.txt"), "keep");
    fs.setAttributes(ro, platform::attr::kNormal);
    EXPECT_EQ(fs.attributes(ro) & kReadOnly, 0u);
    fs.remove(ro);
    EXPECT_FALSE(fs.fileExists(ro));
}

TYPED_TEST_P(FilesContract, ReadOnlyFilesRefuseToBeWrittenOrReplaced) {
    auto& fs = this->fs;
    const std::string ro = this->at("ro.txt");
    this->put("ro.txt", "keep");
    this->put("new.txt", "new");
    fs.setAttributes(ro, kReadOnly);
    this->expectFailures({
        {[&] { fs.replace(this->at("new.txt"), ro); }, 75},
        {[&] { fs.copy(this->at("new.txt"), ro, true); }, 75},
        {[&] { fs.open(ro, OpenMode::Write); }, 75},
        {[&] { fs.open(ro, OpenMode::ReadWrite); }, 75},
        {[&] { fs.open(ro, OpenMode::Append); }, 75},
    });
    EXPECT_EQ(this->get("ro.txt"), "keep");
}

TYPED_TEST_P(FilesContract, HiddenAttributeIsSetClearedAndCopied) {
    auto& fs = this->fs;
    this->put("h.txt", "data");
    fs.setAttributes(this->at("h.txt"), kReadOnly | kHidden);
    EXPECT_EQ(fs.attributes(this->at("h.txt")) & (kReadOnly | kHidden), kReadOnly | kHidden);
    fs.copy(this->at("h.txt"), this->at("copy.txt"), false);
    EXPECT_EQ(fs.attributes(this->at("copy.txt")) & (kReadOnly | kHidden), kReadOnly | kHidden);
    fs.setAttributes(this->at("h.txt"), platform::attr::kNormal);
    EXPECT_EQ(fs.attributes(this->at("h.txt")) & (kReadOnly | kHidden), 0u);
}

TYPED_TEST_P(FilesContract, CopyHonoursOverwriteAndRefusesToCopyOntoItself) {
    auto& fs = this->fs;
    this->put("a", "alpha");
    this->put("b", "beta");
    EXPECT_EQ(FailureOf([&] { fs.copy(this->at("a"), this->at("b"), false); }), 58);
    EXPECT_EQ(this->get("b"), "beta");
    fs.copy(this->at("a"), this->at("b"), true);
    EXPECT_EQ(this->get("b"), "alpha");
    fs.copy(this->at("a"), this->at("c"), false);
    EXPECT_EQ(fs.length(this->at("c")), 5u);
    EXPECT_EQ(FailureOf([&] { fs.copy(this->at("a"), this->at(".\\a"), true); }), 70);
    EXPECT_EQ(this->get("a"), "alpha");
}

TYPED_TEST_P(FilesContract, ReplaceSwapsTheTargetInOneStep) {
    this->put("store.tmp", "first");
    this->fs.replace(this->at("store.tmp"), this->at("store.dat"));  // no target yet
    EXPECT_EQ(this->get("store.dat"), "first");
    this->put("store.tmp", "second, longer");
    this->fs.replace(this->at("store.tmp"), this->at("store.dat"));
    EXPECT_EQ(this->get("store.dat"), "second, longer");
    EXPECT_FALSE(this->fs.fileExists(this->at("store.tmp")));
}

TYPED_TEST_P(FilesContract, FilesHeldOpenElsewhereRefuseWithSeventy) {
    auto& fs = this->fs;
    const std::string busy = this->at("busy.dll");
    this->put("busy.dll", "code");
    this->put("new.dll", "new");
    this->maker.lock(busy, true);
    this->expectFailures({
        {[&] { fs.open(busy, OpenMode::Read); }, 70},
        {[&] { fs.open(busy, OpenMode::Append); }, 70},
        {[&] { fs.copy(busy, this->at("copy.dll"), true); }, 70},
        {[&] { fs.replace(busy, this->at("moved.dll")); }, 70},
        {[&] { fs.remove(busy); }, 70},
    });
    EXPECT_EQ(fs.length(busy), 4u);  // the size can still be read
    this->maker.lock(busy, false);
    EXPECT_EQ(this->get("busy.dll"), "code");
}

TYPED_TEST_P(FilesContract, AFileHeldOpenElsewhereIsNotReplaced) {
    this->put("busy.dll", "code");
    this->put("new.dll", "new");
    this->maker.lock(this->at("busy.dll"), true);
    EXPECT_EQ(FailureOf([&] { this->fs.replace(this->at("new.dll"), this->at("busy.dll")); }), 75);
    this->maker.lock(this->at("busy.dll"), false);
    EXPECT_EQ(this->get("busy.dll") + this->get("new.dll"), "codenew");
}

TYPED_TEST_P(FilesContract, FoldersAreMadeOnceAndNotRemovedWithTheirFiles) {
    auto& fs = this->fs;
    const std::string made = this->at("Made");
    fs.createFolder(made);
    EXPECT_TRUE(fs.folderExists(made));
    EXPECT_FALSE(fs.fileExists(made));
    EXPECT_NE(fs.attributes(made) & kDirectory, 0u);
    EXPECT_TRUE(fs.list(made).empty());
    EXPECT_EQ(FailureOf([&] { fs.createFolder(made); }), 75);
    this->put("Made\\x", "");
    EXPECT_EQ(FailureOf([&] { fs.remove(made); }), 75);
    EXPECT_TRUE(fs.fileExists(made + "\\x"));
}

TYPED_TEST_P(FilesContract, ListsGiveEveryEntryWithItsSizeAndKind) {
    this->put("b.txt", "bb");
    this->put("a.txt", "aaaa");
    this->fs.createFolder(this->at("sub"));
    const std::vector<std::string> expected{"a.txt", "b.txt", "sub\\"};
    auto entries = this->fs.list(this->maker.folder() + "\\");
    EXPECT_EQ(this->sortedNames(entries), expected);
    EXPECT_EQ(this->sortedNames(this->fs.listNames(this->maker.folder())), expected);
    for (const auto& e : entries)
        EXPECT_EQ(e.size, e.isFolder() ? 0u : e.name == "a.txt" ? 4u : 2u) << e.name;
}

TYPED_TEST_P(FilesContract, NamesIgnoreCaseAndKeepTheirSpelling) {
    this->put("Tool.EXE", "MZ");
    this->fs.createFolder(this->at("Sub Folder"));
    EXPECT_TRUE(this->fs.fileExists(this->at("tool.exe")));
    EXPECT_TRUE(this->fs.folderExists(this->at("SUB FOLDER")));
    EXPECT_EQ(this->sortedNames(this->fs.list(this->maker.folder())),
              (std::vector<std::string>{"Sub Folder\\", "Tool.EXE"}));
}

TYPED_TEST_P(FilesContract, PathsAreNormalised) {
    this->put("b.txt", "x");
    EXPECT_TRUE(this->fs.fileExists(this->at(".\\c\\..\\b.txt")));
    EXPECT_TRUE(this->fs.fileExists(this->at("\\b.txt")));
    EXPECT_TRUE(this->fs.folderExists(this->maker.folder() + "\\"));
    EXPECT_FALSE(this->fs.folderExists(this->at("b.txt")));
    EXPECT_FALSE(this->fs.fileExists(this->at("b?.txt")));
}

TYPED_TEST_P(FilesContract, TrailingDotsGoAndClosingBackslashesMeanFolders) {
    this->put("b.txt", "x");
    EXPECT_TRUE(this->fs.fileExists(this->at("b.txt.")));
    EXPECT_FALSE(this->fs.fileExists(this->at("b.txt\\")));
}

TYPED_TEST_P(FilesContract, LongNamesHaveShortNamesThatLeadBack) {
    const std::string longName = this->at("A rather long file name.text");
    this->put("A rather long file name.text", "x");
    this->put("zeta.txt", "");
    const std::string shortName = this->fs.shortPath(longName);
    const std::string leaf = shortName.substr(shortName.rfind('\\') + 1);
    EXPECT_NE(leaf.find('~'), std::string::npos) << shortName;
    EXPECT_LE(leaf.size(), 12u);
    EXPECT_TRUE(this->fs.fileExists(shortName));
    const std::string back = this->fs.longPath(shortName);
    EXPECT_EQ(back.substr(back.rfind('\\') + 1), "A rather long file name.text");
    for (const auto& e : this->fs.list(this->maker.folder()))
        EXPECT_EQ(e.shortName, e.name == "zeta.txt" ? "" : leaf) << e.name;
}

TYPED_TEST_P(FilesContract, DrivesIncludeTheFixedSystemDisk) {
    auto drives = this->fs.drives();
    EXPECT_NE(std::find(drives.begin(), drives.end(), "C:\\"), drives.end());
    EXPECT_TRUE(std::is_sorted(drives.begin(), drives.end()));
    EXPECT_EQ(this->fs.driveType("C:\\"), platform::drivetype::kFixed);
    EXPECT_EQ(this->fs.driveType("c:"), platform::drivetype::kFixed);
    EXPECT_EQ(this->fs.driveType("Q:\\"), platform::drivetype::kNoRoot);
    EXPECT_GT(this->fs.freeSpace("C:\\"), 0u);
    EXPECT_TRUE(this->fs.folderExists("C:\\"));
}

REGISTER_TYPED_TEST_SUITE_P(
    FilesContract, MissingAndMisnamedThingsRaiseTheirClassicNumbers,
    MissingDrivesAndFoldersOnTheWayAreMissingPaths, StreamsKeepToTheirMode,
    SeekPastTheEndFillsTheGapWithZeros, ReadOnlyFilesRefuseDeleteUntilTheAttributeIsCleared,
    ReadOnlyFilesRefuseToBeWrittenOrReplaced, HiddenAttributeIsSetClearedAndCopied,
    CopyHonoursOverwriteAndRefusesToCopyOntoItself, ReplaceSwapsTheTargetInOneStep,
    FilesHeldOpenElsewhereRefuseWithSeventy, AFileHeldOpenElsewhereIsNotReplaced,
    FoldersAreMadeOnceAndNotRemovedWithTheirFiles, ListsGiveEveryEntryWithItsSizeAndKind,
    NamesIgnoreCaseAndKeepTheirSpelling, PathsAreNormalised,
    TrailingDotsGoAndClosingBackslashesMeanFolders, LongNamesHaveShortNamesThatLeadBack,
    DrivesIncludeTheFixedSystemDisk);

}  // namespace orvex::testing
