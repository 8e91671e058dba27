// ScanLogWrite.h: where every finding and every removal ends: the allowed-list gate, the
// record in the scan log, the removal words' effect on the ScumList and the removal
// window, and the finding handed to the recorder.
#pragma once

#include <cstdint>
#include <string>

#include "core/Vb.h"

namespace orvex {

// Logs one action. `action` is one of the action words (an unknown word writes nothing).
// Returns -1, or 0 when the finding is on the allowed list. With `logOnly` -1 the finding
// never reaches the ScumList. `listIndex` is the 1-based row of the ScumList that the
// removal words "delete" and "File In List Not Found" take away.
VbBool ScanLogWrite(std::string location, std::string item, std::string action, std::string name,
                    std::string category, VbBool logOnly, std::int32_t& listIndex);

}  // namespace orvex
