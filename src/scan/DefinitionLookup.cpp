// DefinitionLookup.cpp: the running maxima and sorted keys behind the file scan's lookups.
#include "scan/DefinitionLookup.h"

#include <algorithm>

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

DefinitionLookup::DefinitionLookup(const DefinitionTables& tables) {
    int highest = 0;
    digestRunningMax_.reserve(tables.Md5Index.size());
    digests_.reserve(tables.Md5Index.size());
    for (std::size_t i = 0; i < tables.Md5Index.size(); ++i) {
        const Md5Record& record = tables.Md5Index[i];
        highest = std::max(highest, static_cast<int>(record.FirstChar));
        digestRunningMax_.push_back(highest);
        digests_.emplace_back(record.Hash, static_cast<std::uint32_t>(i));
    }
    // An empty FileName keeps the first character of the record before it.
    highest = 0;
    nameRunningMax_.reserve(tables.FileIndex.size());
    names_.reserve(tables.FileIndex.size());
    for (std::size_t i = 0; i < tables.FileIndex.size(); ++i) {
        const FileRecord& record = tables.FileIndex[i];
        highest = std::max(highest, FirstCharacter(record.FileName));
        nameRunningMax_.push_back(highest);
        names_.emplace_back(record.FileName, static_cast<std::uint32_t>(i));
    }
    std::sort(digests_.begin(), digests_.end());
    std::sort(names_.begin(), names_.end());
}

std::size_t DefinitionLookup::WalkEnd(const std::vector<int>& runningMax, int first) {
    return static_cast<std::size_t>(std::upper_bound(runningMax.begin(), runningMax.end(), first) -
                                    runningMax.begin());
}

std::vector<std::size_t> DefinitionLookup::Hits(const Keyed& keyed, std::string_view key) {
    auto at =
        std::lower_bound(keyed.begin(), keyed.end(), key,
                         [](const auto& entry, std::string_view k) { return entry.first < k; });
    std::vector<std::size_t> hits;
    for (; at != keyed.end() && at->first == key; ++at)
        hits.push_back(at->second);
    return hits;
}

std::size_t DefinitionLookup::DigestWalkEnd(int first) const {
    return WalkEnd(digestRunningMax_, first);
}

std::vector<std::size_t> DefinitionLookup::DigestHits(std::string_view md5) const {
    return Hits(digests_, md5);
}

std::size_t DefinitionLookup::NameWalkEnd(int first) const {
    return WalkEnd(nameRunningMax_, first);
}

std::vector<std::size_t> DefinitionLookup::NameHits(std::string_view fileName) const {
    return Hits(names_, fileName);
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
