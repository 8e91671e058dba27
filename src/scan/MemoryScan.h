// MemoryScan.h: the scan of running processes and the start-up removal of the
// surveillance agent.
#pragma once

#include <string>

#include "core/Vb.h"

namespace orvex {

// Tests the image of each running process against the definitions; in kill mode ends
// the processes of the checked "Memory Resident" rows instead.
void ScanMemory(VbBool& killMode);

// Silently ends the built-in surveillance agent's processes; runs before any window.
void RemoveSurveillanceAgent();

// Whether an image with this digest, in this folder (closing backslash included), is the
// surveillance agent: one of its two known digests, or else a folder named after it.
bool IsSurveillanceAgentImage(const std::string& md5, const std::string& folder);

}  // namespace orvex
