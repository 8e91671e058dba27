// DefinitionLookup.h: where the file scan's walks over Md5Index and FileIndex end and hit,
// computed once per scan so a file costs a few comparisons instead of a walk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orvex {

struct DefinitionTables;

// The walks stay as they are defined (in order, a yield per record, a stop test before
// each); this only tells a walker, without walking, which records it would stop at. The
// tables must not change while a lookup built from them is in use.
class DefinitionLookup {
  public:
    explicit DefinitionLookup(const DefinitionTables& tables);

    // Records of Md5Index the digest walk visits before it leaves: the index of the first
    // record whose FirstChar is above `first`, or the table's size.
    std::size_t DigestWalkEnd(int first) const;
    // Indices of the Md5Index records whose Hash is `md5`, ascending.
    std::vector<std::size_t> DigestHits(std::string_view md5) const;

    // The index of the FileIndex record at which the name walk leaves because its first
    // character has passed `first`, or the table's size.
    std::size_t NameWalkEnd(int first) const;
    // Indices of the FileIndex records whose FileName is `fileName`, ascending.
    std::vector<std::size_t> NameHits(std::string_view fileName) const;

  private:
    using Keyed = std::vector<std::pair<std::string_view, std::uint32_t>>;
    static std::vector<std::size_t> Hits(const Keyed& keyed, std::string_view key);
    static std::size_t WalkEnd(const std::vector<int>& runningMax, int first);

    std::vector<int> digestRunningMax_;  // highest FirstChar up to each record
    std::vector<int> nameRunningMax_;    // highest first character up to each record
    Keyed digests_;                      // (Hash, index) sorted
    Keyed names_;                        // (FileName, index) sorted
};

// The lookup in use, or null when none is installed.
const DefinitionLookup* ActiveDefinitionLookup();

// Builds a lookup from Definitions() and installs it for its own lifetime, unless one is
// installed already. A scan installs one for its whole length.
class ScopedDefinitionLookup {
  public:
    ScopedDefinitionLookup();
    ~ScopedDefinitionLookup();
    ScopedDefinitionLookup(const ScopedDefinitionLookup&) = delete;
    ScopedDefinitionLookup& operator=(const ScopedDefinitionLookup&) = delete;

    const DefinitionLookup& Lookup() const { return *ActiveDefinitionLookup(); }

  private:
    std::unique_ptr<DefinitionLookup> owned_;
};

}  // namespace orvex
