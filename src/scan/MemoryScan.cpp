// MemoryScan.cpp: process scanning.
#include "scan/MemoryScan.h"

namespace orvex {

void ScanMemory(VbBool& killMode) {
    (void)killMode;
}

void RemoveSurveillanceAgent() {}

}  // namespace orvex
