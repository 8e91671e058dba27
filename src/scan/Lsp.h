// Lsp.h: the Winsock catalogs. Reads the protocol and name-space providers, judges their
// files by the definitions at the start of a removal run, and takes the bad entries out
// of the catalogs, renumbering the rest, by editing the registry directly.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/Vb.h"

namespace orvex {

// "entry|path" per catalog entry, numbered 1 to Count() in the order the catalog lists them.
class ProviderTable {
  public:
    std::int32_t Count() const { return static_cast<std::int32_t>(entries_.size()); }
    // Entry `index`, 1..Count(); failure 9 outside.
    const std::string& operator[](std::int32_t index) const;
    std::string& operator[](std::int32_t index);
    // `count` empty entries, ready to be filled.
    void ReDim(std::int32_t count) { entries_.assign(static_cast<std::size_t>(count), {}); }

  private:
    std::vector<std::string> entries_;  // entries_[0] is entry 1
};

// The tables the last LSPCheck read; process-wide.
ProviderTable& ProtocolProviders();
ProviderTable& NameSpaceProviders();

// Fill the tables from the catalogs in force.
void GetProtocalProviders();
void GetNamespaceProviders();

// The provider's file in a catalog text: cut three characters behind the first ".", a
// leading %variable% expanded from the environment, a short name made long. Empty when
// the text holds no ".".
std::string GetRealPath(std::string text);

// Judges every provider's file; when one is recognised, deletes the bad entries and
// renumbers both catalogs. True when it repaired them.
VbBool LSPCheck();

// Delete the entry `entry` (a subkey name such as "000000000003") from the catalog in force.
void DeleteProtocal(const std::string& entry);
void DeleteNameSpace(const std::string& entry);

// Renumber the catalog in force from 000000000001 on, in its enumeration order, and
// write Num_Catalog_Entries. Protocol entries keep only PackedCatalogItem.
void ReOrderProtocal();
void ReOrderNameSpace();

}  // namespace orvex
