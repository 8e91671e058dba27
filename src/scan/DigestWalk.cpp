// DigestWalk.cpp: the shared walk of Md5Index.
#include "scan/DigestWalk.h"

#include <cstddef>

#include "core/AppState.h"
#include "core/Text.h"
#include "ui/UiHost.h"

namespace orvex {

bool WalkDigestIndex(const std::string& md5, const std::function<void(const Md5Record&)>& onHit) {
    if (md5.empty()) return true;
    const int first = Asc(md5);
    const auto& index = Definitions().Md5Index;
    for (std::size_t i = 0; i < index.size(); ++i) {
        ui::DoEvents();
        if (IsTrue(App().StopRequested)) return false;
        const Md5Record& record = index[i];
        if (first < record.FirstChar) break;
        if (first == record.FirstChar && md5 == record.Hash) onHit(record);
    }
    return true;
}

}  // namespace orvex
