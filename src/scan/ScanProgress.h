// ScanProgress.h: what a running scan tells whoever watches it: the scan page shows it in
// its labels, the command line on the terminal.
#pragma once

#include <cstdint>
#include <string>

#include "core/Reporter.h"

namespace orvex {

class ScanProgress {
  public:
    virtual ~ScanProgress() = default;
    // The items scanned so far, to be shown after the stage's `message`.
    virtual void ItemsScanned(const std::string& message, std::int32_t items) {
        (void)message, (void)items;
    }
    // The distinct threats found so far; not reported once a stop is requested.
    virtual void ThreatsFound(std::int32_t threats) { (void)threats; }
};

inline ScanProgress& TheScanProgress() {
    return Reporter<ScanProgress>::Get();
}

}  // namespace orvex
