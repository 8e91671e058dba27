// UsageReport.h: the usage file ovsstat.ph, one plain line each time the user removes,
// allows or restores an item.
#pragma once

#include <cstdint>
#include <string>

namespace orvex {

// The action codes of a usage line.
inline constexpr std::int32_t kUsageRemoved = 1;
inline constexpr std::int32_t kUsageAllowed = 2;
inline constexpr std::int32_t kUsageRestored = 3;

// App().DataFolder + "ovsstat.ph".
std::string UsageReportPath();

// The item's categories as the item list shows them: " Adware, Trojan", or LngArray(111)
// when the definitions give none.
std::string GetItemDetail(const std::string& itemName);

// Appends "name|categories|code|allowed names" to the usage file.
void PhoneHome(const std::string& itemName, std::int32_t actionCode);

}  // namespace orvex
