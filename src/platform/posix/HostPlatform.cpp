// HostPlatform.cpp: the POSIX back-end as the installed platform.
#include "platform/Platform.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/PosixRegistry.h"
#include "platform/posix/PosixSystem.h"

namespace orvex::platform {
namespace {

class PosixPlatform : public OwnedPlatform {
  public:
    PosixPlatform() : system_(files_, files_.paths()), processes_(files_.paths()) {}

    Platform view() override { return Platform{&registry_, &files_, &processes_, &system_}; }

  private:
    PosixFiles files_;
    PosixRegistry registry_;
    PosixSystem system_;
    PosixProcesses processes_;
};

}  // namespace

std::unique_ptr<OwnedPlatform> MakeHostPlatform() {
    return std::make_unique<PosixPlatform>();
}

}  // namespace orvex::platform
