// MemoryScan.h: the scan of running processes and the start-up removal of the
// surveillance agent.
#pragma once

namespace orvex {

// Silently ends the built-in surveillance agent's processes; runs before any window.
void RemoveSurveillanceAgent();

}  // namespace orvex
