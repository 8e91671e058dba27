// ComUnregister.h: asking a component file to unregister itself before it is destroyed,
// by running its exported registration entry on a thread of its own with a time limit.
#pragma once

#include <string>

namespace orvex {

// RegSvr32(path, true) when the file exists; false otherwise.
bool UnRegServer(const std::string& path);

// Runs DllUnregisterServer (or DllRegisterServer) of the file and waits ten seconds for it.
// True when it finished in time; false when the file isn't a library, lacks the entry or
// no thread could start. An entry still running after the wait ends the calling thread.
bool RegSvr32(const std::string& path, bool unregister);

}  // namespace orvex
