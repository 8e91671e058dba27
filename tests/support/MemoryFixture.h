// MemoryFixture.h: the test base of every engine test: the process reset, a fresh memory
// back-end and a scriptable headless host installed for the test, and a fixed disk "C:\".
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/memory/MemoryPlatform.h"
#include "ui/HeadlessHost.h"

namespace orvex::testing {

class MemoryPlatformTest : public ::testing::Test {
  protected:
    MemoryPlatformTest();
    ~MemoryPlatformTest() override;

    // The error log in App().DataFolder; empty when nothing was logged.
    std::string ErrorLog();

    platform::memory::MemoryPlatform machine;
    // Short names for the parts, as tests use them all the time.
    platform::memory::MemoryRegistry& registry = machine.registry;
    platform::memory::MemoryFileSystem& files = machine.files;
    platform::memory::MemoryProcesses& processes = machine.processes;
    platform::memory::MemorySystem& system = machine.system;
    ui::HeadlessHost host;

  private:
    std::unique_ptr<platform::ScopedPlatform> installed_;
    std::unique_ptr<ui::ScopedHost> hosted_;
};

}  // namespace orvex::testing
