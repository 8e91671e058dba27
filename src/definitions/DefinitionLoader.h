// DefinitionLoader.h: reads ovsstatic.dat and ovsdef.dat into the definition tables,
// sorts what the scans search, records the versions and shows them on the main window.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

// An open definition file: its bytes, read whole, and the read position.
struct DefinitionFile {
    std::string bytes;
    std::size_t position = 0;

    bool AtEnd() const { return position >= bytes.size(); }
};

// Reads both definition files, the static one first, into Definitions(); afterwards the
// tables are ready to search. Called at start and again after an update.
void LoadReferenceFiles();

// Reads DataFolder + "ovsstatic.dat" into the tables; a missing file is not an error.
void LoadStaticDat();

// The next record: a 4-byte little-endian length and that many bytes. Both prefix kinds
// read 32 bits. A record that does not fit in what is left of the file ends the file: it
// comes back empty and the position moves to the end, so nothing is allocated beyond the
// file's own size.
std::string GetString(DefinitionFile& file, bool useLongPrefix);

// Sorts array[low..high] ascending by binary comparison; -1 stands for the array's lower
// or upper bound. The element order among equal texts is that of the classic quicksort
// with the middle element as pivot.
void QuickSortMe(std::vector<std::string>& array, std::int64_t low, std::int64_t high);

// Exchanges two texts without copying their characters.
void SwapStrings(std::string& a, std::string& b);

}  // namespace orvex
