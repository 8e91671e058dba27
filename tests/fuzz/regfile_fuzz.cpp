// regfile_fuzz.cpp: arbitrary bytes as a REGEDIT4 registry backup; what the reader accepts
// must be written back and read again to the same keys.
#include <cstdlib>
#include <tuple>

#include "FuzzSetup.h"
#include "platform/RegFile.h"

namespace {

bool SameKeys(const std::vector<orvex::platform::RegFileKey>& a,
              const std::vector<orvex::platform::RegFileKey>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t k = 0; k < a.size(); ++k) {
        if (a[k].hive != b[k].hive || a[k].path != b[k].path) return false;
        if (a[k].values.size() != b[k].values.size()) return false;
        for (std::size_t v = 0; v < a[k].values.size(); ++v) {
            const auto& x = a[k].values[v];
            const auto& y = b[k].values[v];
            if (std::tie(x.name, x.type, x.data) != std::tie(y.name, y.type, y.data)) return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::platform;
    std::string error;
    const auto keys = ReadRegFile(orvex::fuzz::Bytes(data, size), error);
    if (!keys) return 0;
    const auto text = WriteRegFile(*keys);
    if (!text) std::abort();  // read, so it must be writable
    const auto again = ReadRegFile(*text, error);
    if (!again || !SameKeys(*keys, *again)) std::abort();
    return 0;
}
