// Config.h: the fixed values the program is built with, kept in one place.
#pragma once

namespace orvex::config {

// The product's registry key below HKEY_LOCAL_MACHINE.
inline constexpr const char* kProductKey = "Software\\Norvani\\Orvex Sentry";
inline constexpr const char* kProductTitle = "Orvex Sentry";

// The update endpoints: production, and the test host chosen by "/test".
inline constexpr const char* kUpdateBaseUrl = "http://update.orvexsentry.com/";
inline constexpr const char* kTestUpdateBaseUrl = "http://test.orvexsentry.com:1051/";

// The single-instance markers other processes look for; each name holds two literal
// backslashes.
inline constexpr const char* kMutexNameNt5 = "Global\\\\_Orvex_Sentry";
inline constexpr const char* kMutexNameOther = "\\\\_Orvex_Sentry";

}  // namespace orvex::config

// DNS suffixes that two known hijackers write into the TCP/IP settings; compared exactly.
// Two-label names; the reserved top-level domain keeps them from naming a real site until
// the suffixes of the threats in the field are filled in.
namespace orvex::config {
inline constexpr const char* kDomainHijackNameA = "searchsuffix.invalid";
inline constexpr const char* kDomainHijackNameB = "dnsredirect.invalid";
}  // namespace orvex::config
