// DefinitionLookup.h: where the scans' walks over Md5Index, FileIndex and [ItemList] end and
// hit, worked out once per scan so an item costs a few comparisons instead of a walk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orvex {

struct DefinitionTables;

// The walks stay as they are defined (in order, a yield per record, a stop test before
// each); this only tells a walker, without walking, which records it would stop at. Each
// part is built when first asked for. The tables must not change while a lookup built
// from them is in use.
class DefinitionLookup {
  public:
    explicit DefinitionLookup(const DefinitionTables& tables) : tables_(tables) {}

    using Keyed = std::vector<std::pair<std::string_view, std::uint32_t>>;
    // The records whose key is the one asked for, ascending by index in `.second`.
    using Hits = std::span<const Keyed::value_type>;

    // Records of Md5Index the digest walk visits before it leaves: the index of the first
    // record whose FirstChar is above `first`, or the table's size.
    std::size_t DigestWalkEnd(int first) const;
    // The Md5Index records whose Hash is `md5`.
    Hits DigestHits(std::string_view md5) const;

    // The index of the FileIndex record at which the name walk leaves because its first
    // character has passed `first`, or the table's size.
    std::size_t NameWalkEnd(int first) const;
    // The FileIndex records whose FileName is `fileName`.
    Hits NameHits(std::string_view fileName) const;

    // The first [ItemList] line whose first field, in lower case, is `folded`.
    std::optional<std::size_t> ItemListLine(const std::string& folded) const;

  private:
    // One sorted table: the running maximum of the first characters, and (key, index).
    struct Walk {
        std::vector<int> runningMax;
        Keyed keyed;
        // Each key's run in `keyed`, as (first, past the last).
        std::unordered_map<std::string_view, std::pair<std::uint32_t, std::uint32_t>> runs;
    };
    static void IndexRuns(Walk& walk);
    const Walk& Digests() const;
    const Walk& Names() const;
    static std::size_t WalkEnd(const Walk& walk, int first);
    static Hits Find(const Walk& walk, std::string_view key);

    const DefinitionTables& tables_;
    mutable std::optional<Walk> digests_;
    mutable std::optional<Walk> names_;
    mutable std::optional<std::unordered_map<std::string, std::size_t>> itemList_;
};

// The lookup in use, or null when none is installed.
const DefinitionLookup* ActiveDefinitionLookup();

// Installs a lookup over Definitions() for its own lifetime, unless one is installed
// already. A scan installs one for its whole length.
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
