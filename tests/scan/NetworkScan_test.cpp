// NetworkScan_test.cpp: the hijacked DNS suffix found in any of its six places, the user's
// Yes or No, the repair to one blank, and the default values put back.
#include "scan/NetworkScan.h"

#include "core/AppState.h"
#include "core/Config.h"
#include "core/Text.h"
#include "scan/Recorder.h"
#include "support/MemoryFixture.h"

namespace orvex {
namespace {

using platform::Hive;

const std::string kParameters = "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters";
const std::string kParameters001 = "SYSTEM\\CurrentControlSet001\\Services\\Tcpip\\Parameters";
const std::string kParameters002 = "SYSTEM\\CurrentControlSet002\\Services\\Tcpip\\Parameters";

class NetworkScanTest : public testing::MemoryPlatformTest {
  protected:
    NetworkScanTest() {
        LngArray()[667] = "Your DNS suffix was changed. Repair it?";
        host.DefaultAnswer(ui::msgbox::kNo);
    }

    void Domain(const std::string& key, const std::string& value) {
        registry.setString(Hive::LocalMachine, key, "Domain", value);
    }
    std::string DomainOf(const std::string& key) {
        return registry.data(Hive::LocalMachine, key, "Domain").value_or("<none>");
    }
};

// Names compare exactly: other case, a trailing blank or a number are no hijack.
TEST_F(NetworkScanTest, CleanSettingsShowNoDialog) {
    Domain(kParameters, UCase(config::kDomainHijackNameA));
    Domain(kParameters + "\\Interfaces\\{A}", std::string(config::kDomainHijackNameB) + " ");
    registry.setDword(Hive::LocalMachine, kParameters001, "Domain", 5);
    Domain(kParameters002, "corp.example");
    Domain(kParameters002 + "\\Interfaces\\{C}", "");
    registry.addKey(Hive::LocalMachine, kParameters001 + "\\Interfaces\\{B}");
    SpecialRegDomainHijack();
    EXPECT_TRUE(host.Messages().empty());
    EXPECT_EQ(DomainOf(kParameters002), "corp.example");
}

TEST_F(NetworkScanTest, AHijackAsksNoKeepsItAndYesBlanksEveryHijackedPlace) {
    Domain(kParameters, config::kDomainHijackNameB);
    Domain(kParameters001, "corp.example");
    Domain(kParameters + "\\Interfaces\\{A}", "corp.example");
    Domain(kParameters002 + "\\Interfaces\\{B}", config::kDomainHijackNameA);
    Domain(kParameters002 + "\\Interfaces\\{C}", config::kDomainHijackNameB);
    SpecialRegDomainHijack();  // No leaves the values as they were
    EXPECT_EQ(DomainOf(kParameters002 + "\\Interfaces\\{B}"), config::kDomainHijackNameA);
    host.Answer(ui::msgbox::kYes);
    SpecialRegDomainHijack();
    ASSERT_EQ(host.Messages().size(), 2u);
    EXPECT_EQ(host.Messages()[0].prompt, "Your DNS suffix was changed. Repair it?");
    EXPECT_EQ(host.Messages()[0].buttons, ui::msgbox::kYesNo);
    EXPECT_EQ(DomainOf(kParameters), " ");
    EXPECT_EQ(DomainOf(kParameters001), "corp.example");
    EXPECT_EQ(DomainOf(kParameters + "\\Interfaces\\{A}"), "corp.example");
    EXPECT_EQ(DomainOf(kParameters002 + "\\Interfaces\\{B}"), " ");
    EXPECT_EQ(DomainOf(kParameters002 + "\\Interfaces\\{C}"), " ");
    EXPECT_EQ(registry.value(Hive::LocalMachine, kParameters, "Domain")->type,
              platform::regtype::kSz);
    EXPECT_TRUE(ScumListOfRun().empty());

    SpecialRegDomainHijack();  // repaired: nothing left to ask about
    EXPECT_EQ(host.Messages().size(), 2u);
}

TEST_F(NetworkScanTest, DefaultValueOnlyForTheTwoActions) {
    registry.addKey(Hive::CurrentUser, "Software\\Browser\\Main");
    for (const char* action : {"Other Threat", "prolivation", "IERESET", ""})
        SetDefaultRegistryValues(action, 0x80000001u, "Software\\Browser\\Main", "Start Page");
    EXPECT_FALSE(registry.hasValue(Hive::CurrentUser, "Software\\Browser\\Main", "Start Page"));

    SetDefaultRegistryValues("Prolivation", 0x80000001u, "Software\\Browser\\Main", "Start Page");
    SetDefaultRegistryValues("IEReset", 0x80000002u, "Software\\Browser\\Prefixes", "www");
    EXPECT_EQ(registry.data(Hive::CurrentUser, "Software\\Browser\\Main", "Start Page"), "http://");
    EXPECT_EQ(registry.data(Hive::LocalMachine, "Software\\Browser\\Prefixes", "www"), "http://");
}

}  // namespace
}  // namespace orvex
