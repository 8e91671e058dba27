// DefinitionLookup.cpp: the running maxima and sorted keys behind the scans' lookups.
#include "scan/DefinitionLookup.h"

#include <algorithm>

#include "core/Text.h"
#include "definitions/DefinitionTables.h"

namespace orvex {
namespace {

const DefinitionLookup*& Installed() {
    static const DefinitionLookup* lookup = nullptr;
    return lookup;
}

int FirstCharacter(const std::string& text) {
    return text.empty() ? 0 : static_cast<unsigned char>(text.front());
}

}  // namespace

const DefinitionLookup::Walk& DefinitionLookup::Digests() const {
    if (digests_) return *digests_;
    Walk& walk = digests_.emplace();
    int highest = 0;
    for (std::size_t i = 0; i < tables_.Md5Index.size(); ++i) {
        const Md5Record& record = tables_.Md5Index[i];
        highest = std::max(highest, static_cast<int>(record.FirstChar));
        walk.runningMax.push_back(highest);
        walk.keyed.emplace_back(record.Hash, static_cast<std::uint32_t>(i));
    }
    IndexRuns(walk);
    return walk;
}

// An empty FileName keeps the first character of the record before it, so the running
// maximum passes over it.
const DefinitionLookup::Walk& DefinitionLookup::Names() const {
    if (names_) return *names_;
    Walk& walk = names_.emplace();
    int highest = 0;
    for (std::size_t i = 0; i < tables_.FileIndex.size(); ++i) {
        const FileRecord& record = tables_.FileIndex[i];
        highest = std::max(highest, FirstCharacter(record.FileName));
        walk.runningMax.push_back(highest);
        walk.keyed.emplace_back(record.FileName, static_cast<std::uint32_t>(i));
    }
    IndexRuns(walk);
    return walk;
}

std::size_t DefinitionLookup::WalkEnd(const Walk& walk, int first) {
    const auto& max = walk.runningMax;
    return static_cast<std::size_t>(std::upper_bound(max.begin(), max.end(), first) - max.begin());
}

void DefinitionLookup::IndexRuns(Walk& walk) {
    std::sort(walk.keyed.begin(), walk.keyed.end());
    walk.runs.reserve(walk.keyed.size());
    for (std::uint32_t i = 0; i < walk.keyed.size(); ++i) {
        auto [run, added] = walk.runs.try_emplace(walk.keyed[i].first, i, i + 1);
        if (!added) run->second.second = i + 1;
    }
}

DefinitionLookup::Hits DefinitionLookup::Find(const Walk& walk, std::string_view key) {
    const auto run = walk.runs.find(key);
    if (run == walk.runs.end()) return {};
    const auto [first, last] = run->second;
    return Hits(walk.keyed).subspan(first, last - first);
}

std::size_t DefinitionLookup::DigestWalkEnd(int first) const {
    return WalkEnd(Digests(), first);
}

DefinitionLookup::Hits DefinitionLookup::DigestHits(std::string_view md5) const {
    return Find(Digests(), md5);
}

std::size_t DefinitionLookup::NameWalkEnd(int first) const {
    return WalkEnd(Names(), first);
}

DefinitionLookup::Hits DefinitionLookup::NameHits(std::string_view fileName) const {
    return Find(Names(), fileName);
}

std::optional<std::size_t> DefinitionLookup::ItemListLine(const std::string& folded) const {
    if (!itemList_) {
        auto& firstLines = itemList_.emplace();
        const auto& lines = tables_.ItemListDefs.Items;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (lines[i].empty()) continue;  // "" has no fields at all
            firstLines.emplace(LCase(std::string_view(lines[i]).substr(0, lines[i].find('|'))), i);
        }
    }
    const auto at = itemList_->find(folded);
    if (at == itemList_->end()) return std::nullopt;
    return at->second;
}

const DefinitionLookup* ActiveDefinitionLookup() {
    return Installed();
}

ScopedDefinitionLookup::ScopedDefinitionLookup() {
    if (Installed() != nullptr) return;
    owned_ = std::make_unique<DefinitionLookup>(Definitions());
    Installed() = owned_.get();
}

ScopedDefinitionLookup::~ScopedDefinitionLookup() {
    if (owned_) Installed() = nullptr;
}

}  // namespace orvex
