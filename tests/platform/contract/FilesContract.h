// FilesContract.h: what every file back-end does as kernel32 does, on a scratch folder of
// its maker (files(), folder(), lock(path, on) for a file another program holds open).
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/contract/Contract.h"
#include "support/FailureOf.h"

namespace orvex::testing {

using platform::OpenMode;
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
    // Every case starts with one file, a.txt.
    void SetUp() override {
        ContractTest<Maker>::SetUp();
        if (!this->IsSkipped()) put("a.txt", "alpha");
    }
    std::string at(std::string_view name) {
        return this->maker.folder() + "\\" + std::string(name);
    }
    void put(std::string_view name, std::string_view bytes, OpenMode mode = OpenMode::Write) {
        fs.open(at(name), mode)->write(bytes.data(), bytes.size());
    }
    std::string get(std::string_view name) { return ReadAll(fs, at(name)); }
    // The names of the scratch folder, sorted, folders with a closing backslash.
    std::vector<std::string> names(bool full = true) {
        std::vector<std::string> names;
        for (const auto& e : full ? fs.list(this->maker.folder()) : fs.listNames(at("")))
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
    const std::string a = this->at("a.txt"), nul("C:\\a\0b", 6);
    // Each call on a missing file and on a file in a missing folder; 0 is not asked.
    const struct {
        std::function<void(const std::string&)> call;
        int noFile, noFolder;
    } cases[] = {
        {[&](auto& p) { fs.open(p, OpenMode::Read); }, 53, 76},
        {[&](auto& p) { fs.open(p, OpenMode::Write); }, 0, 76},
        {[&](auto& p) { fs.length(p); }, 53, 76},
        {[&](auto& p) { fs.remove(p); }, 53, 0},
        {[&](auto& p) { fs.replace(p, a); }, 53, 0},
        {[&](auto& p) { fs.createFolder(p); }, 0, 76},
    };
    for (const auto& c : cases)
        for (const auto& [path, number] :
             {std::pair(this->at("none.txt"), c.noFile), {this->at("gone\\none.txt"), c.noFolder}})
            EXPECT_EQ(number ? FailureOf([&] { c.call(path); }) : 0, number) << path;
    this->expectFailures({
        {[&] { fs.open(this->maker.folder(), OpenMode::Read); }, 75},
        {[&] { fs.open(nul, OpenMode::Read); }, 52},
        {[&] { fs.list(this->at("gone")); }, 76},
    });
    EXPECT_FALSE(fs.fileExists(this->at("none.txt")) || fs.folderExists(this->at("gone")) ||
                 fs.fileExists(nul));
}

TYPED_TEST_P(FilesContract, MissingDrivesAndFoldersOnTheWayAreMissingPaths) {
    auto& fs = this->fs;
    this->expectFailures({
        {[&] { fs.open("Q:\\none.txt", OpenMode::Read); }, 76},
        {[&] { fs.list(this->at("a.txt")); }, 76},
    });
}

TYPED_TEST_P(FilesContract, StreamsKeepToTheirMode) {
    char byte;
    {
        auto both = this->fs.open(this->at("a.txt"), OpenMode::ReadWrite);
        both->seek(3);
        both->write("xy", 2);
        both->seek(1);
        EXPECT_TRUE(both->read(&byte, 1) == 1 && byte == 'l');
        both->seek(20);
        EXPECT_EQ(both->read(&byte, 1), 0u);
        auto append = this->fs.open(this->at("gap.bin"), OpenMode::Append);
        append->seek(3);  // past the end, the gap fills with zeros
        append->write("z", 1);
        EXPECT_EQ(append->position(), 4u);
        EXPECT_EQ(FailureOf([&] { append->read(&byte, 1); }), 54);
    }
    EXPECT_EQ(this->get("a.txt") + this->get("gap.bin"), std::string("alpxy\0\0\0z", 9));
    this->put("gap.bin", "!", OpenMode::Append);
    this->put("a.txt", "ab");
    this->put("rw.txt", "n", OpenMode::ReadWrite);
    EXPECT_EQ(this->get("a.txt") + this->get("rw.txt") + this->get("gap.bin").substr(4), "abn!");
    auto reader = this->fs.open(this->at("a.txt"), OpenMode::Read);
    EXPECT_EQ(FailureOf([&] { reader->write("z", 1); }), 54);
}

TYPED_TEST_P(FilesContract, ReplaceSwapsInOneStepAndReadOnlyFilesStay) {
    auto& fs = this->fs;
    const std::string a = this->at("a.txt");
    for (const char* content : {"first", "second, longer"}) {  // without, then with a target
        this->put("store.tmp", content);
        fs.replace(this->at("store.tmp"), this->at("store.dat"));
        EXPECT_EQ(this->get("store.dat"), content);
        EXPECT_FALSE(fs.fileExists(this->at("store.tmp")));
    }
    fs.setAttributes(a, kReadOnly);
    EXPECT_EQ(FailureOf([&] { fs.remove(a); }), 75);
    fs.setAttributes(a, platform::attr::kNormal);
    fs.remove(a);
    EXPECT_FALSE(fs.fileExists(a));
}

TYPED_TEST_P(FilesContract, ReadOnlyFilesRefuseToBeWrittenOrReplaced) {
    auto& fs = this->fs;
    const std::string ro = this->at("ro.txt"), a = this->at("a.txt");
    this->put("ro.txt", "keep");
    fs.setAttributes(ro, kReadOnly);
    this->expectFailures({
        {[&] { fs.replace(a, ro); }, 75},
        {[&] { fs.open(ro, OpenMode::Write); }, 75},
        {[&] { fs.open(ro, OpenMode::ReadWrite); }, 75},
        {[&] { fs.open(ro, OpenMode::Append); }, 75},
    });
    EXPECT_EQ(this->get("ro.txt"), "keep");
}

TYPED_TEST_P(FilesContract, FilesHeldOpenElsewhereRefuseWithSeventy) {
    auto& fs = this->fs;
    const std::string a = this->at("a.txt");
    this->maker.lock(a, true);
    this->expectFailures({
        {[&] { fs.open(a, OpenMode::Read); }, 70},
        {[&] { fs.open(a, OpenMode::Append); }, 70},
        {[&] { fs.replace(a, this->at("moved.dll")); }, 70},
        {[&] { fs.remove(a); }, 70},
    });
    EXPECT_EQ(fs.length(a), 5u);  // the size can still be read
    this->maker.lock(a, false);
    EXPECT_EQ(this->get("a.txt"), "alpha");
}

TYPED_TEST_P(FilesContract, AFileHeldOpenElsewhereIsNotReplaced) {
    this->put("new.dll", "new");
    this->maker.lock(this->at("a.txt"), true);
    EXPECT_EQ(FailureOf([&] { this->fs.replace(this->at("new.dll"), this->at("a.txt")); }), 75);
    this->maker.lock(this->at("a.txt"), false);
    EXPECT_EQ(this->get("a.txt") + this->get("new.dll"), "alphanew");
}

TYPED_TEST_P(FilesContract, FoldersPathsAndDrives) {
    auto& fs = this->fs;
    const std::string made = this->at("sub");
    fs.createFolder(made);
    EXPECT_TRUE(fs.folderExists(made) && !fs.fileExists(made) && fs.list(made).empty());
    EXPECT_EQ(FailureOf([&] { fs.createFolder(made); }), 75);
    this->put("b.txt", "bb");
    const std::vector<std::string> expected{"a.txt", "b.txt", "sub\\"};
    EXPECT_EQ(this->names(), expected);
    EXPECT_EQ(this->names(false), expected);
    for (const auto& e : fs.list(this->maker.folder()))
        EXPECT_EQ(e.size, e.isFolder() ? 0u : e.name == "a.txt" ? 5u : 2u) << e.name;
    this->put("sub\\x", "");
    EXPECT_EQ(FailureOf([&] { fs.remove(made); }), 75);
    EXPECT_TRUE(fs.fileExists(this->at("sub\\.\\..\\sub\\x")) &&
                fs.fileExists(this->at("\\a.txt")));
    EXPECT_FALSE(fs.folderExists(this->at("a.txt")) || fs.fileExists(this->at("a?.txt")));
    const auto drives = fs.drives();
    EXPECT_NE(std::find(drives.begin(), drives.end(), "C:\\"), drives.end());
    EXPECT_TRUE(std::is_sorted(drives.begin(), drives.end()));
    for (const char* fixed : {"C:\\", "c:"})
        EXPECT_EQ(fs.driveType(fixed), platform::drivetype::kFixed);
    EXPECT_EQ(fs.driveType("Q:\\"), platform::drivetype::kNoRoot);
}

TYPED_TEST_P(FilesContract, NamesFollowWindows) {
    auto& fs = this->fs;
    const std::string longName = "A rather long file name.text";
    this->put(longName, "MZ");
    fs.createFolder(this->at("Sub Folder"));
    // Case, trailing dots and closing backslashes.
    EXPECT_TRUE(fs.fileExists(this->at("a RATHER long file name.TEXT")));
    EXPECT_TRUE(fs.folderExists(this->at("SUB FOLDER")) && fs.fileExists(this->at("a.txt.")));
    EXPECT_FALSE(fs.fileExists(this->at("a.txt\\")));
    EXPECT_EQ(this->names(), (std::vector<std::string>{longName, "Sub Folder\\", "a.txt"}));
    // Short names lead back.
    const std::string shortName = fs.shortPath(this->at(longName));
    const std::string leaf = shortName.substr(shortName.rfind('\\') + 1);
    EXPECT_TRUE(leaf.find('~') != std::string::npos && leaf.size() <= 12u) << shortName;
    const std::string back = fs.longPath(shortName);
    EXPECT_EQ(back.substr(back.rfind('\\') + 1), longName);
    for (const auto& e : fs.list(this->maker.folder()))
        EXPECT_EQ(e.shortName, e.name == longName ? leaf : e.isFolder() ? e.shortName : "");
}

TYPED_TEST_P(FilesContract, AFolderStampMovesWithItsEntriesOnly) {
    auto& fs = this->fs;
    const std::string folder = this->maker.folder();
    // Each step after a pause longer than a coarse file clock's tick.
    const auto moves = [&](const std::function<void()>& step) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        const std::uint64_t before = fs.folderStamp(folder);
        step();
        return fs.folderStamp(folder) != before;
    };
    EXPECT_TRUE(moves([&] { this->put("b.txt", "b"); }));
    EXPECT_FALSE(moves([&] { this->put("b.txt", "more", OpenMode::Append); }));
    EXPECT_TRUE(moves([&] { fs.replace(this->at("b.txt"), this->at("c.txt")); }));
    EXPECT_TRUE(moves([&] { fs.remove(this->at("c.txt")); }));
    this->expectFailures({
        {[&] { fs.folderStamp(this->at("gone")); }, 76},
        {[&] { fs.folderStamp(this->at("a.txt")); }, 76},
    });
}

REGISTER_TYPED_TEST_SUITE_P(FilesContract, MissingAndMisnamedThingsRaiseTheirClassicNumbers,
                            MissingDrivesAndFoldersOnTheWayAreMissingPaths, StreamsKeepToTheirMode,
                            ReplaceSwapsInOneStepAndReadOnlyFilesStay,
                            ReadOnlyFilesRefuseToBeWrittenOrReplaced,
                            FilesHeldOpenElsewhereRefuseWithSeventy,
                            AFileHeldOpenElsewhereIsNotReplaced, FoldersPathsAndDrives,
                            NamesFollowWindows, AFolderStampMovesWithItsEntriesOnly);

}  // namespace orvex::testing
