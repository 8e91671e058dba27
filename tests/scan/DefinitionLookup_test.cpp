// DefinitionLookup_test.cpp: the file scan's indexed walks against the record-by-record
// walks they stand for, on random tables (unsorted, empty names, wrong first characters,
// counts beyond the table) with a stop pressed at every possible yield.
#include "scan/DefinitionLookup.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "core/Text.h"
#include "platform/Md5.h"
#include "scan/FileScan.h"
#include "scan/ScanFixture.h"
#include "scan/ScanLogWrite.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

const std::string kFolder = "C:\\t\\";
const std::vector<std::string> kContents = {"first bad file", "second bad file"};
const std::vector<std::string> kNames = {"a.exe", "b.exe", "c.txt", "", "0.exe", "z.exe"};
const std::vector<std::string> kThreats = {"AThreat", "BThreat"};

bool Stopped() {
    return IsTrue(App().StopRequested);
}

void Report(const std::string& fileName, const char* action, const std::string& threat) {
    std::int32_t listIndex = 0;
    ScanLogWrite(kFolder, fileName, action, threat, "FileSystem", VbFalse, listIndex);
}

// The digest walk as written: from the first record, a stop test before each record and a
// yield after each, left when FirstChar passes the digest's first character.
bool ReferenceDigestPass(const std::string& name, bool testOnly, bool& recognised) {
    const std::string md5 = MD5File(kFolder + name);
    const int first = Asc(md5);
    for (const Md5Record& record : Definitions().Md5Index.Items) {
        if (Stopped()) return false;
        if (first < record.FirstChar) break;
        if (first == record.FirstChar && md5 == record.Hash) {
            recognised = true;
            if (!testOnly) {
                Report(name, "found", record.Name);
                break;
            }
        }
        ui::DoEvents();
    }
    return true;
}

// The name walk as written, up to the count of FileDefs.
bool ReferenceNamePass(const std::string& name, bool testOnly) {
    const auto& index = Definitions().FileIndex;
    const int first = Asc(name);
    const std::int64_t last = std::min<std::int64_t>(Definitions().FileDefs.Count, index.UBound());
    int rowFirst = 0;
    bool recognised = false;
    for (std::int64_t i = 0; i <= last; ++i) {
        if (Stopped()) return recognised;
        ui::DoEvents();
        const FileRecord& record = index[static_cast<std::size_t>(i)];
        if (!record.FileName.empty()) rowFirst = Asc(record.FileName);
        if (first < rowFirst) return recognised;
        if (first != rowFirst || record.FileName != name) continue;
        ui::DoEvents();
        ui::DoEvents();
        const std::int32_t code = ExclusionRoutine(name, kFolder, record.Name);
        if (code == 0 || code == 1) {
            recognised = true;
            if (!testOnly) Report(name, "found", record.Name);
        } else if (code == 2) {
            recognised = true;
            Report(name, "suspect", record.Name);
        }
    }
    return recognised;
}

bool ReferenceJudge(const std::string& name, bool testOnly) {
    bool recognised = false;
    if (JustExt(name) == "exe") {
        if (!ReferenceDigestPass(name, testOnly, recognised)) return recognised;
        if (recognised) return true;
    }
    return ReferenceNamePass(name, testOnly);
}

class DefinitionLookupTest : public testing::ScanTest {
  protected:
    DefinitionLookupTest() {
        LoadDefinitions(
            "Ver=11/22/2026\n[Files]\nAThreat|a.exe\n[End]\n[Exclusion]\n"
            "a.exe||||0|1\nb.exe|bthreat|||4|2\n[End]\n");
    }

    std::string Pick(const std::vector<std::string>& from) {
        return from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random_)];
    }
    int Below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }

    // Digests of the planted files and two that match nothing, in any order; now and then a
    // FirstChar that disagrees with its hash.
    void RandomDigestIndex() {
        std::vector<std::string> hashes = {std::string(32, '0'), std::string(32, 'f')};
        for (const std::string& content : kContents)
            hashes.push_back(platform::Md5Hex(content));
        auto& index = Definitions().Md5Index;
        index.Items.assign(1, Md5Record{});
        for (int i = Below(8); i > 0; --i) {
            const std::string hash = Pick(hashes);
            const int first = Below(6) == 0 ? Asc(Pick(hashes)) : Asc(hash);
            index.Items.push_back({Pick(kThreats), static_cast<std::int16_t>(first), hash});
        }
        if (Below(2) == 0)
            std::sort(index.Items.begin(), index.Items.end(),
                      [](const Md5Record& a, const Md5Record& b) { return a.Hash < b.Hash; });
        index.Count = static_cast<std::int32_t>(index.Items.size()) - 1;
    }

    void RandomNameIndex() {
        auto& index = Definitions().FileIndex;
        index.Items.clear();
        for (int i = Below(9); i > 0; --i)
            index.Items.push_back({Pick(kThreats), Pick(kNames)});
        if (Below(2) == 0)
            std::sort(
                index.Items.begin(), index.Items.end(),
                [](const FileRecord& a, const FileRecord& b) { return a.FileName < b.FileName; });
        Definitions().FileDefs.Count = Below(static_cast<int>(index.Items.size()) + 3) - 1;
    }

    using Outcome = std::tuple<bool, std::int64_t, std::vector<std::string>>;

    // Judges `name` with a stop pressed at the given yield (0: none), from a clean start.
    template <typename Judge>
    Outcome Run(Judge judge, std::int64_t stopAt) {
        ScumListOfRun().clear();
        List1OfRun().Clear();
        App().StopRequested = VbFalse;
        ui::HeadlessHost user;
        const ui::ScopedHost installed(user);
        if (stopAt > 0) user.AtYield(stopAt, [] { App().StopRequested = VbTrue; });
        const bool result = judge();
        std::vector<std::string> rows;
        for (const ScumRow& row : ScumListOfRun())
            rows.push_back(row.name + "/" + row.level + "/" + row.item);
        return {result, user.Yields(), rows};
    }

    std::mt19937 random_{20261122};
};

TEST_F(DefinitionLookupTest, TheIndexedWalksMatchTheRecordByRecordWalksYieldForYield) {
    for (int round = 0; round < 300; ++round) {
        RandomDigestIndex();
        RandomNameIndex();
        for (const char* name : {"a.exe", "b.exe", "c.txt"})
            files.addFile(kFolder + name, Pick(kContents));
        const std::string name = Pick(std::vector<std::string>{"a.exe", "b.exe", "c.txt"});
        const bool testOnly = Below(2) == 0;
        const auto reference = [&] { return ReferenceJudge(name, testOnly); };
        const auto indexed = [&] { return IsTrue(ScumFile(name, kFolder, ToVb(testOnly))); };
        const Outcome whole = Run(reference, 0);
        ASSERT_EQ(Run(indexed, 0), whole) << "round " << round;
        // A stop at each yield the whole judgment makes, and one beyond it.
        for (std::int64_t stopAt = 1; stopAt <= std::get<1>(whole) + 1; ++stopAt) {
            const Outcome expected = Run(reference, stopAt);
            ASSERT_EQ(Run(indexed, stopAt), expected) << "round " << round << " stop " << stopAt;
        }
    }
}

}  // namespace
}  // namespace orvex
