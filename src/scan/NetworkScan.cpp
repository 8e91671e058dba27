// NetworkScan.cpp: the domain-hijack repair and the default values.
#include "scan/NetworkScan.h"

namespace orvex {

void SpecialRegDomainHijack() {}

void SetDefaultRegistryValues(const std::string&, std::uint32_t, const std::string&,
                              const std::string&) {}

}  // namespace orvex
