// ProcessState.h: the one reset of everything the process keeps between calls.
#pragma once

namespace orvex {

// Puts the process back as it was before start-up: fresh shared variables, language table,
// definition tables, findings, stores, forms and random generator; no platform back-end; a
// fresh headless host; the pages' reports installed, as the program runs with them.
void ResetProcessState();

}  // namespace orvex
