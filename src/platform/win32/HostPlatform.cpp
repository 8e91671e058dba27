// HostPlatform.cpp: the win32 back-end as the installed platform.
#include "platform/Platform.h"

#include "core/Failure.h"

namespace orvex::platform {

std::unique_ptr<OwnedPlatform> MakeHostPlatform() { Raise(failure::kObjectNotSet); }

}  // namespace orvex::platform
