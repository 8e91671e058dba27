// Win32Registry.h: the registry primitives on advapi32, ANSI throughout.
#pragma once

#include "platform/Registry.h"

namespace orvex::platform::win32 {

// Texts of REG_SZ and REG_EXPAND_SZ values travel without their terminating NUL; every
// other type as its raw bytes. Status codes are the Win32 ones.
class Win32Registry : public RegistryBackend {
  public:
    bool keyExists(Hive hive, std::string_view path) override;
    long createKey(Hive hive, std::string_view path) override;
    long deleteTree(Hive hive, std::string_view path) override;
    long listSubKeys(Hive hive, std::string_view path, std::vector<RegSubKey>& out) override;
    long listValues(Hive hive, std::string_view path, std::vector<RegValue>& out) override;
    long readValue(Hive hive, std::string_view path, std::string_view name, RegValue& out) override;
    long writeValue(Hive hive, std::string_view path, const RegValue& value) override;
    long deleteValue(Hive hive, std::string_view path, std::string_view name) override;
};

}  // namespace orvex::platform::win32
