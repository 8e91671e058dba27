// MemoryFixture.cpp: installs and removes the memory back-end and the host around each test.
#include "support/MemoryFixture.h"

#include "app/ProcessState.h"
#include "core/AppState.h"

namespace orvex::testing {

MemoryPlatformTest::MemoryPlatformTest() {
    ResetProcessState();
    files.addDrive("C:\\", platform::drivetype::kFixed);
    installed_ = std::make_unique<platform::ScopedPlatform>(machine.view());
    // After the reset, which installs a host of its own.
    hosted_ = std::make_unique<ui::ScopedHost>(host);
}

MemoryPlatformTest::~MemoryPlatformTest() {
    hosted_.reset();
    installed_.reset();
    ResetProcessState();
}

std::string MemoryPlatformTest::ErrorLog() {
    const std::string path = App().DataFolder + "ovs.ph";
    return files.exists(path) ? files.contents(path) : "";
}

}  // namespace orvex::testing
