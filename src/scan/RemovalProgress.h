// RemovalProgress.h: what a removal tells the windows: each row it comes to, and one step
// of the bar for each row deleted or left for the user.
#pragma once

#include <cstdint>

#include "core/Reporter.h"

namespace orvex {

class RemovalProgress {
  public:
    virtual ~RemovalProgress() = default;
    // The pass comes to row `row` (1-based, from the last up); the results summary follows
    // the shrinking list.
    virtual void RowStarting(std::int32_t row) { (void)row; }
    // A row was deleted; not reported once the removal is cancelled.
    virtual void RowDeleted() {}
    // A row needs the user's own removal.
    virtual void ManualRemovalNeeded() {}
};

inline RemovalProgress& TheRemovalProgress() {
    return Reporter<RemovalProgress>::Get();
}

}  // namespace orvex
