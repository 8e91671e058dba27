// DefinitionTables.h: the process-wide tables the definition loader fills and the scans search.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace orvex {

// One element of Md5Index: a known file digest and the threat it belongs to.
struct Md5Record {
    std::string Name;            // threat name (column 1 of the [MD5] line)
    std::int16_t FirstChar = 0;  // character code of the first character of Hash
    std::string Hash;            // digest text (column 0)
};

// One element of FileIndex: a known file name and the threat it belongs to.
struct FileRecord {
    std::string Name;      // threat name
    std::string FileName;  // lower-case file name
};

// A classic growable array with a count beside it. Elements are indexed from 0 to UBound().
//
// Text tables start as one empty element. Append grows the array by one and stores at index
// Count before counting, so a table of n lines holds them at 0..n-1 with one empty element
// behind them (UBound() == Count). A sort over the whole array moves that empty element to
// index 0, so after the load's sort pass FileDefs holds its lines at 1..Count.
template <class T>
struct DefArray {
    std::vector<T> Items;
    std::int32_t Count = 0;

    T& operator[](std::size_t i) { return Items[i]; }
    const T& operator[](std::size_t i) const { return Items[i]; }
    std::int32_t UBound() const { return static_cast<std::int32_t>(Items.size()) - 1; }
    std::size_t size() const { return Items.size(); }
    bool InRange(std::int64_t i) const {
        return i >= 0 && i < static_cast<std::int64_t>(Items.size());
    }
};

using TextTable = DefArray<std::string>;

// Text table in its starting shape: one empty element, count 0.
inline void ResetTextTable(TextTable& t) {
    t.Items.assign(1, std::string());
    t.Count = 0;
}

// Grow by one keeping the content, store at index Count, count one more.
inline void AppendLine(TextTable& t, std::string line) {
    if (t.Items.empty()) t.Items.emplace_back();
    t.Items.emplace_back();
    t.Items[static_cast<std::size_t>(t.Count)] = std::move(line);
    ++t.Count;
}

// Everything the definitions say. Filled by LoadReferenceFiles, static file first; lives until
// the next load. Layout after a load with at least two [Files] lines:
//  - Md5Index: elements 0..Count, element 0 empty (FirstChar 0), records ascending by Hash;
//    Count is the number of digests.
//  - FileIndex: elements 0..FileDefs.Count, element 0 empty, ascending by FileName; the scans
//    walk it up to FileDefs.Count. Count is the number of records written.
//  - FileDefs: "file name|threat" lines, sorted, at 1..Count.
//  - ExclusionDefs: sorted like FileDefs (lines at 1..Count, element 0 empty).
//  - Every other text table: lines at 0..Count-1 in file order, one empty element behind.
// With fewer than two [Files] lines nothing is sorted and Md5Index stays empty.
struct DefinitionTables {
    TextTable Md5Defs;  // scratch "hash|name" lines, emptied at the end of a load
    DefArray<Md5Record> Md5Index;
    DefArray<FileRecord> FileIndex;
    TextTable FileDefs;
    TextTable AddRemoveDefs;
    TextTable StartupDefs;
    TextTable ClsidDefs;
    TextTable RegistryDefs;
    TextTable ItemListDefs;
    TextTable DescriptionDefs;
    TextTable ExclusionDefs;
    TextTable DoNotUnRegisterDefs;

    DefinitionTables() {
        for (TextTable* t : TextTables())
            ResetTextTable(*t);
    }

    // Every text table, for code that treats them alike.
    std::vector<TextTable*> TextTables() {
        return {&Md5Defs,       &FileDefs,           &AddRemoveDefs, &StartupDefs,
                &ClsidDefs,     &RegistryDefs,       &ItemListDefs,  &DescriptionDefs,
                &ExclusionDefs, &DoNotUnRegisterDefs};
    }
};

// The one instance; tests reset it with `Definitions() = DefinitionTables{}`.
inline DefinitionTables& Definitions() {
    static DefinitionTables tables;
    return tables;
}

}  // namespace orvex
