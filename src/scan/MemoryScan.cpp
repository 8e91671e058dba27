// MemoryScan.cpp: process scanning.
#include "scan/MemoryScan.h"

namespace orvex {

// The agent is recognised by its file digests, which need the file scan's MD5 routine;
// until that exists there is nothing this routine can safely end.
void RemoveSurveillanceAgent() {}

}  // namespace orvex
