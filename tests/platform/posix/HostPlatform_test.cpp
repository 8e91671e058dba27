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
    std::string file = folder / "registry.json";
    ::setenv("ORVEX_REGISTRY", file.c_str(), 1);
    {
        auto host = MakeHostPlatform();
        Platform view = host->view();
        ASSERT_TRUE(view.registry && view.files && view.processes && view.system);
        ScopedPlatform installed(view);

        FileHelper helper;
        EXPECT_TRUE(helper.FolderExists("C:\\tmp"));
        EXPECT_EQ(helper.Drives(), std::vector<std::string>{"C:\\"});

        RegistryHelper registry;
        registry.RootKey(Hive::LocalMachine);
        registry.KeyPath("Software\\Norvani\\Orvex Sentry");
        EXPECT_TRUE(registry.SetValue("LastScan", "11/22/2026 7:14:05 PM"));
        EXPECT_EQ(Processes().osVersion()->major, 5u);
    }
    PosixRegistry reloaded(file);
    RegValue v;
    EXPECT_EQ(
        reloaded.readValue(Hive::LocalMachine, "Software\\Norvani\\Orvex Sentry", "LastScan", v),
        regstatus::kOk);
    EXPECT_EQ(v.data, "11/22/2026 7:14:05 PM");
    ::unsetenv("ORVEX_REGISTRY");
}

}  // namespace
}  // namespace orvex::platform
