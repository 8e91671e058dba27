// NetworkScan.h: the repairs of network and browser settings a threat has changed.
#pragma once

#include <cstdint>
#include <string>

namespace orvex {

// Looks for a hijacked DNS suffix in the TCP/IP settings and, if the user agrees, blanks it.
void SpecialRegDomainHijack();

// Puts "http://" back into a value for the actions "Prolivation" and "IEReset".
void SetDefaultRegistryValues(const std::string& action, std::uint32_t rootHandle,
                              const std::string& key, const std::string& valueName);

}  // namespace orvex
