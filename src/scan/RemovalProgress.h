// RemovalProgress.h: what the removal words of the scan log tell the removal window:
// one step for each row deleted or left for the user.
#pragma once

#include "core/Reporter.h"

namespace orvex {

class RemovalProgress {
  public:
    virtual ~RemovalProgress() = default;
    // A row was deleted; not reported once the removal is cancelled.
    virtual void RowDeleted() {}
    // A row needs the user's own removal.
    virtual void ManualRemovalNeeded() {}
};

inline RemovalProgress& TheRemovalProgress() {
    return Reporter<RemovalProgress>::Get();
}

}  // namespace orvex
