// HostPlatform.cpp: the Win32 back-ends as the installed platform of the Windows programs.
#include "platform/Platform.h"
#include "platform/win32/Win32Files.h"
#include "platform/win32/Win32Processes.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32System.h"

namespace orvex::platform {
namespace {

class Win32Platform : public OwnedPlatform {
  public:
    Platform view() override { return {&registry_, &files_, &processes_, &system_}; }

  private:
    win32::Win32Registry registry_;
    win32::Win32Files files_;
    win32::Win32Processes processes_;
    win32::Win32System system_;
};

}  // namespace

std::unique_ptr<OwnedPlatform> MakeHostPlatform() {
    return std::make_unique<Win32Platform>();
}

}  // namespace orvex::platform
