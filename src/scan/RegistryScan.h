// RegistryScan.h: the registry stage of a scan and the test of one registry definition.
#pragma once

#include <cstdint>
#include <string>

namespace orvex {

// The registry stage: the special scans in their order, then the CLSID and registry tables.
void ScumRegistry();

// Tests one registry definition: with an empty `text` whether `key` exists, else which
// values of `key` hold `text` in their name or data.
void RegistryCheck(std::uint32_t rootHandle, const std::string& key, const std::string& text,
                   const std::string& threat);

// `text` without one leading and one trailing double quote, each only when present.
std::string removeChr34(const std::string& text);

// A root name to its handle, compared exactly; 0 when the name is none of the roots.
std::uint32_t RootHandleFromName(const std::string& name);
// The handle to the root's name as findings write it; empty for HKEY_PERFORMANCE_DATA
// and for anything unknown.
std::string RootNameFromHandle(std::uint32_t handle);

}  // namespace orvex
