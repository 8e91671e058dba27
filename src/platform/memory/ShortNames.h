// ShortNames.h: the 8.3 names that Windows gives long file names ("Program Files" becomes
// "PROGRA~1"), for back-ends that have to make them up.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace orvex::platform::memory {

// Whether a name already is a valid 8.3 name (in any case), so that it gets no short name.
bool IsShortName(std::string_view name);

// The short name for `longName`: the first six usable characters in capitals, "~n" and the
// first three characters of the extension, with the lowest n that `taken` does not refuse
// (the base shrinks as n grows past 9). Empty when the name is already an 8.3 name.
std::string MakeShortName(std::string_view longName,
                          const std::function<bool(std::string_view)>& taken);

}  // namespace orvex::platform::memory
