// Win32Processes.h: the process list and process control on kernel32 and PSAPI.
#pragma once

#include "platform/Processes.h"

namespace orvex::platform::win32 {

class Win32Processes : public ProcessApi {
  public:
    std::optional<OsVersion> osVersion() override;
    std::vector<ProcessEntry> listWithPaths() override;
    std::vector<std::string> listImageNames() override;
    bool terminate(std::uint32_t pid) override;
    std::uint32_t currentProcessId() override;
    bool start(std::string_view path, std::string_view arguments, bool hidden) override;
};

}  // namespace orvex::platform::win32
