// NetworkScan.cpp: the repair of a hijacked DNS suffix, with the user's consent, and the
// default values some threats' removal puts back.
#include "scan/NetworkScan.h"

#include <array>
#include <functional>

#include "core/AppState.h"
#include "core/Config.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "platform/RegistryHelper.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kDomainValue = "Domain";

// The TCP/IP parameter keys below HKEY_LOCAL_MACHINE, each read itself and then through its
// Interfaces subkeys. The numbered names are the ones this program has always looked at.
constexpr std::array<const char*, 3> kTcpipKeys{
    "SYSTEM\\CurrentControlSet\\Services\\Tcpip\\Parameters",
    "SYSTEM\\CurrentControlSet001\\Services\\Tcpip\\Parameters",
    "SYSTEM\\CurrentControlSet002\\Services\\Tcpip\\Parameters",
};

bool IsHijackedDomain(const std::string& domain) {
    return domain == config::kDomainHijackNameA || domain == config::kDomainHijackNameB;
}

// Visits the six places in their order with the helper's key selected on each.
void ForEachDomainPlace(platform::RegistryHelper& helper, const std::function<void()>& visit) {
    for (const char* key : kTcpipKeys) {
        helper.KeyPath(key);
        visit();
    }
    for (const char* key : kTcpipKeys) {
        const std::string interfaces = std::string(key) + "\\Interfaces";
        for (const std::string& item :
             helper.EnumerateKeys(platform::Hive::LocalMachine, interfaces)) {
            helper.KeyPath(interfaces + "\\" + item.substr(0, item.find('|')));
            visit();
        }
    }
}

}  // namespace

void SpecialRegDomainHijack() {
    Procedure proc("RegistryModule", "SpecialRegDomainHijack");
    proc.Run([&] {
        platform::RegistryHelper helper;
        helper.SubKey(std::nullopt);
        helper.RootKey(platform::Hive::LocalMachine);
        bool hijacked = false;
        ForEachDomainPlace(helper, [&] {
            if (IsHijackedDomain(helper.GetValue(kDomainValue))) hijacked = true;
        });
        if (!hijacked) return;
        if (ui::Host().MsgBox(Lng(667), ui::msgbox::kYesNo, config::kProductTitle) !=
            ui::msgbox::kYes)
            return;
        // Blanked, not deleted: a single space is what the settings then hold.
        ForEachDomainPlace(helper, [&] {
            if (IsHijackedDomain(helper.GetValue(kDomainValue)))
                helper.SetValue(kDomainValue, " ", platform::regtype::kSz);
        });
    });
}

void SetDefaultRegistryValues(const std::string& action, std::uint32_t rootHandle,
                              const std::string& key, const std::string& valueName) {
    Procedure proc("RegistryModule", "SetDefaultRegistryValues");
    proc.Run([&] {
        if (action != "Prolivation" && action != "IEReset") return;
        platform::RegistryHelper helper;
        helper.RootKey(static_cast<platform::Hive>(rootHandle));
        helper.KeyPath(key);
        helper.SetValue(valueName, "http://", platform::regtype::kSz);
    });
}

}  // namespace orvex
