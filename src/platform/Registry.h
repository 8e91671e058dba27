// Registry.h: the registry primitives every back-end implements. Texts are ANSI bytes;
// paths are relative to a root, separated by "\", with no leading backslash ("" is the
// root itself). Key and value names compare without regard to case, as on Windows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::platform {

enum class Hive : std::uint32_t {
    ClassesRoot = 0x80000000u,
    CurrentUser = 0x80000001u,
    LocalMachine = 0x80000002u,
    Users = 0x80000003u,
    PerformanceData = 0x80000004u,
    CurrentConfig = 0x80000005u,
    DynData = 0x80000006u,
};

// Registry value types by their Windows numbers.
namespace regtype {
inline constexpr std::uint32_t kNone = 0;
inline constexpr std::uint32_t kSz = 1;
inline constexpr std::uint32_t kExpandSz = 2;
inline constexpr std::uint32_t kBinary = 3;
inline constexpr std::uint32_t kDword = 4;
inline constexpr std::uint32_t kMultiSz = 7;
inline constexpr std::uint32_t kQword = 11;
}  // namespace regtype

// Win32-style status codes the primitives return.
namespace regstatus {
inline constexpr long kOk = 0;
inline constexpr long kNotFound = 2;
inline constexpr long kAccessDenied = 5;
inline constexpr long kInvalid = 87;
}  // namespace regstatus

// One value. For text types, `data` holds the text without its terminating NUL; for every
// other type the raw bytes (a DWORD is 4 little-endian bytes).
struct RegValue {
    std::string name;
    std::uint32_t type = regtype::kSz;
    std::string data;
};

struct RegSubKey {
    std::string name;
    std::string lastWrite;  // the key's last write time as text, may be empty
};

class RegistryBackend {
  public:
    virtual ~RegistryBackend() = default;

    virtual bool keyExists(Hive hive, std::string_view path) = 0;
    // Creates the key and any missing parents.
    virtual long createKey(Hive hive, std::string_view path) = 0;
    // Deletes the key with everything below it.
    virtual long deleteTree(Hive hive, std::string_view path) = 0;
    virtual long listSubKeys(Hive hive, std::string_view path, std::vector<RegSubKey>& out) = 0;
    virtual long listValues(Hive hive, std::string_view path, std::vector<RegValue>& out) = 0;
    virtual long readValue(Hive hive, std::string_view path, std::string_view name,
                           RegValue& out) = 0;
    // Writes into an existing key; kNotFound when the key is missing.
    virtual long writeValue(Hive hive, std::string_view path, const RegValue& value) = 0;
    virtual long deleteValue(Hive hive, std::string_view path, std::string_view name) = 0;
};

}  // namespace orvex::platform
