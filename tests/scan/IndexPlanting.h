// IndexPlanting.h: fills the sorted digest and file-name indexes the way a definition load
// leaves them, for scans that search them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "definitions/DefinitionTables.h"

namespace orvex::testing {

using ThreatPairs = std::vector<std::pair<std::string, std::string>>;

// "hash" -> threat pairs into Md5Index, sorted, with the empty element 0.
inline void PlantDigests(ThreatPairs hashThreat) {
    std::sort(hashThreat.begin(), hashThreat.end());
    auto& index = Definitions().Md5Index;
    index.Items.assign(1, Md5Record{});
    for (const auto& pair : hashThreat)
        index.Items.push_back({pair.second, static_cast<std::int16_t>(pair.first[0]), pair.first});
    index.Count = static_cast<std::int32_t>(hashThreat.size());
}

// "file name" -> threat pairs into FileIndex, sorted, with the empty element 0.
inline void PlantNames(ThreatPairs nameThreat) {
    std::sort(nameThreat.begin(), nameThreat.end());
    auto& index = Definitions().FileIndex;
    index.Items.assign(1, FileRecord{});
    for (const auto& pair : nameThreat)
        index.Items.push_back({pair.second, pair.first});
    index.Count = static_cast<std::int32_t>(nameThreat.size());
    Definitions().FileDefs.Count = index.Count;
}

}  // namespace orvex::testing
