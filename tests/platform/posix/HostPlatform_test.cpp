// HostPlatform_test.cpp: the POSIX back-end installed as the platform, used through the
// engine's own helpers.
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "platform/posix/PosixRegistry.h"
#include "platform/posix/PosixTestFolder.h"

namespace orvex::platform {
namespace {

TEST(HostPlatform, HelpersWorkOnTheRealMachineAndTheRegistryFile) {
    orvex::testing::PosixTestFolder folder;
    const std::string file = folder / "registry.json", key = "Software\\Norvani\\Orvex Sentry";
    ::setenv("ORVEX_REGISTRY", file.c_str(), 1);
    {
        auto host = MakeHostPlatform();
        ScopedPlatform installed(host->view());
        EXPECT_TRUE(FileHelper().FolderExists("C:\\tmp"));
        RegistryHelper registry;
        registry.RootKey(Hive::LocalMachine);
        registry.KeyPath(key);
        EXPECT_TRUE(registry.SetValue("LastScan", "11/22/2026 7:14:05 PM"));
        EXPECT_EQ(Processes().osVersion()->major, 5u);
    }
    ::unsetenv("ORVEX_REGISTRY");
    RegValue v;
    EXPECT_EQ(PosixRegistry(file).readValue(Hive::LocalMachine, key, "LastScan", v),
              regstatus::kOk);
    EXPECT_EQ(v.data, "11/22/2026 7:14:05 PM");
}

}  // namespace
}  // namespace orvex::platform
