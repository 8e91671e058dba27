// RegistryScan.cpp: the registry stage.
#include "scan/RegistryScan.h"

namespace orvex {

void ScumRegistry() {}

void RegistryCheck(std::uint32_t, const std::string&, const std::string&, const std::string&) {}

std::string removeChr34(const std::string& text) {
    return text;
}

std::uint32_t RootHandleFromName(const std::string&) {
    return 0;
}

std::string RootNameFromHandle(std::uint32_t) {
    return {};
}

}  // namespace orvex
