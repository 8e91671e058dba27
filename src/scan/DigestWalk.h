// DigestWalk.h: the sorted walk of Md5Index that the registry-side scans share.
#pragma once

#include <functional>
#include <string>

#include "definitions/DefinitionTables.h"

namespace orvex {

// Walks Md5Index from its first record, yielding on each, until the digest's first
// character has passed; calls `onHit` for each record whose hash equals `md5` exactly.
// An empty digest walks nothing. False when a stop request ended the walk.
bool WalkDigestIndex(const std::string& md5, const std::function<void(const Md5Record&)>& onHit);

}  // namespace orvex
