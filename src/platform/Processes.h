// Processes.h: the process primitives of the memory scan and of start-up.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::platform {

// What GetVersionEx reports.
struct OsVersion {
    std::uint32_t platformId = 0;  // 1 for the 9x family, 2 for the NT family
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
};

struct ProcessEntry {
    std::uint32_t pid = 0;
    std::string imagePath;  // full path of the main module, empty when it cannot be read
};

class ProcessApi {
  public:
    virtual ~ProcessApi() = default;

    virtual std::optional<OsVersion> osVersion() = 0;
    // The PSAPI-style list: every process id with the path of its first module.
    virtual std::vector<ProcessEntry> listWithPaths() = 0;
    // The Toolhelp-style list: the image name of every process, in snapshot order.
    virtual std::vector<std::string> listImageNames() = 0;
    virtual bool terminate(std::uint32_t pid) = 0;
    virtual std::uint32_t currentProcessId() = 0;
    // Starts a program without waiting for it; `hidden` asks for no visible window.
    virtual bool start(std::string_view path, std::string_view arguments, bool hidden) = 0;
};

}  // namespace orvex::platform
