// Win32Registry.cpp: the registry primitives on advapi32. Keys are opened for one call and
// closed at its end; every size is asked of the registry, never assumed.
#include "platform/win32/Win32Registry.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "platform/win32/Win32Text.h"

namespace orvex::platform::win32 {
namespace {

// Longest names the registry allows (255 and 16383 characters), doubled for DBCS code pages.
constexpr DWORD kKeyNameBuffer = 2 * 256;
constexpr DWORD kValueNameBuffer = 2 * 16384;
// The registry stops at 512 levels; deeper means something is wrong.
constexpr int kMaxDepth = 512;
// A value may grow between the size query and the read; try a few times, not for ever.
constexpr int kReadAttempts = 8;

HKEY RootHandle(Hive hive) {
    switch (hive) {
        case Hive::ClassesRoot:
            return HKEY_CLASSES_ROOT;
        case Hive::CurrentUser:
            return HKEY_CURRENT_USER;
        case Hive::LocalMachine:
            return HKEY_LOCAL_MACHINE;
        case Hive::Users:
            return HKEY_USERS;
        case Hive::PerformanceData:
            return HKEY_PERFORMANCE_DATA;
        case Hive::CurrentConfig:
            return HKEY_CURRENT_CONFIG;
        case Hive::DynData:
            return HKEY_DYN_DATA;
    }
    return nullptr;
}

bool IsText(DWORD type) {
    return type == REG_SZ || type == REG_EXPAND_SZ;
}

// A key opened for the lifetime of the object.
class OpenKey {
  public:
    OpenKey(Hive hive, std::string_view path, REGSAM access) {
        HKEY root = RootHandle(hive);
        if (root == nullptr || HasNul(path)) return;
        status_ = RegOpenKeyExA(root, std::string(path).c_str(), 0, access, &key_);
    }
    ~OpenKey() {
        if (ok()) RegCloseKey(key_);
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    bool ok() const { return status_ == ERROR_SUCCESS; }
    long status() const { return status_; }
    HKEY get() const { return key_; }

  private:
    HKEY key_ = nullptr;
    LONG status_ = ERROR_INVALID_PARAMETER;
};

std::string LastWriteText(const FILETIME& written) {
    FILETIME local;
    SYSTEMTIME t;
    if (!FileTimeToLocalFileTime(&written, &local) || !FileTimeToSystemTime(&local, &t)) {
        return "";
    }
    char text[32];
    std::snprintf(text, sizeof text, "%02u/%02u/%02u %02u:%02u:%02u", t.wMonth, t.wDay,
                  t.wYear % 100, t.wHour, t.wMinute, t.wSecond);
    return text;
}

// Reads one value of an open key, whatever its size.
long QueryValue(HKEY key, const std::string& name, RegValue& out) {
    std::string data;
    DWORD type = REG_NONE;
    DWORD size = 0;
    LONG status = RegQueryValueExA(key, name.c_str(), nullptr, &type, nullptr, &size);
    for (int attempt = 0; attempt < kReadAttempts; ++attempt) {
        if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) return status;
        // Room for a terminator the registry may add to text it converts.
        data.assign(std::max<std::size_t>(size, data.size() * 2) + 2, '\0');
        size = static_cast<DWORD>(data.size());
        status = RegQueryValueExA(key, name.c_str(), nullptr, &type,
                                  reinterpret_cast<BYTE*>(data.data()), &size);
        if (status == ERROR_SUCCESS) break;
    }
    if (status != ERROR_SUCCESS) return status;
    data.resize(std::min<std::size_t>(size, data.size()));
    if (IsText(type) && !data.empty() && data.back() == '\0') data.pop_back();
    out.name = name;
    out.type = type;
    out.data = std::move(data);
    return ERROR_SUCCESS;
}

std::vector<std::string> SubKeyNames(HKEY key, LONG& status) {
    std::vector<std::string> names;
    std::string buffer(kKeyNameBuffer, '\0');
    for (DWORD index = 0;; ++index) {
        DWORD length = kKeyNameBuffer;
        status =
            RegEnumKeyExA(key, index, buffer.data(), &length, nullptr, nullptr, nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS) break;
        if (status != ERROR_SUCCESS) return names;
        names.emplace_back(buffer.data(), length);
    }
    status = ERROR_SUCCESS;
    return names;
}

long DeleteTreeBelow(HKEY parent, const std::string& name, int depth) {
    if (depth > kMaxDepth) return ERROR_INVALID_PARAMETER;
    HKEY key = nullptr;
    LONG status = RegOpenKeyExA(parent, name.c_str(), 0,
                                KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | DELETE, &key);
    if (status != ERROR_SUCCESS) return status;
    const std::vector<std::string> children = SubKeyNames(key, status);
    for (std::size_t i = 0; status == ERROR_SUCCESS && i < children.size(); ++i) {
        status = DeleteTreeBelow(key, children[i], depth + 1);
    }
    RegCloseKey(key);
    if (status != ERROR_SUCCESS) return status;
    return RegDeleteKeyA(parent, name.c_str());
}

}  // namespace

bool Win32Registry::keyExists(Hive hive, std::string_view path) {
    OpenKey key(hive, path, KEY_QUERY_VALUE);
    // A key we may not read is still there.
    return key.ok() || key.status() == ERROR_ACCESS_DENIED;
}

long Win32Registry::createKey(Hive hive, std::string_view path) {
    HKEY root = RootHandle(hive);
    if (root == nullptr || HasNul(path)) return regstatus::kInvalid;
    HKEY key = nullptr;
    LONG status = RegCreateKeyExA(root, std::string(path).c_str(), 0, nullptr,
                                  REG_OPTION_NON_VOLATILE, KEY_QUERY_VALUE, nullptr, &key, nullptr);
    if (status == ERROR_SUCCESS) RegCloseKey(key);
    return status;
}

long Win32Registry::deleteTree(Hive hive, std::string_view path) {
    HKEY root = RootHandle(hive);
    // An empty path would mean the whole hive.
    if (root == nullptr || path.empty() || HasNul(path)) return regstatus::kInvalid;
    return DeleteTreeBelow(root, std::string(path), 0);
}

long Win32Registry::listSubKeys(Hive hive, std::string_view path, std::vector<RegSubKey>& out) {
    out.clear();
    OpenKey key(hive, path, KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE);
    if (!key.ok()) return key.status();
    std::string buffer(kKeyNameBuffer, '\0');
    for (DWORD index = 0;; ++index) {
        DWORD length = kKeyNameBuffer;
        FILETIME written{};
        LONG status = RegEnumKeyExA(key.get(), index, buffer.data(), &length, nullptr, nullptr,
                                    nullptr, &written);
        if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
        if (status != ERROR_SUCCESS) return status;
        out.push_back({std::string(buffer.data(), length), LastWriteText(written)});
    }
}

long Win32Registry::listValues(Hive hive, std::string_view path, std::vector<RegValue>& out) {
    out.clear();
    OpenKey key(hive, path, KEY_QUERY_VALUE);
    if (!key.ok()) return key.status();
    std::string buffer(kValueNameBuffer, '\0');
    for (DWORD index = 0;; ++index) {
        DWORD length = kValueNameBuffer;
        LONG status = RegEnumValueA(key.get(), index, buffer.data(), &length, nullptr, nullptr,
                                    nullptr, nullptr);
        if (status == ERROR_NO_MORE_ITEMS) return ERROR_SUCCESS;
        if (status != ERROR_SUCCESS) return status;
        RegValue value;
        status = QueryValue(key.get(), std::string(buffer.data(), length), value);
        if (status == ERROR_FILE_NOT_FOUND) continue;  // deleted since it was listed
        if (status != ERROR_SUCCESS) return status;
        out.push_back(std::move(value));
    }
}

long Win32Registry::readValue(Hive hive, std::string_view path, std::string_view name,
                              RegValue& out) {
    if (HasNul(name)) return regstatus::kInvalid;
    OpenKey key(hive, path, KEY_QUERY_VALUE);
    if (!key.ok()) return key.status();
    return QueryValue(key.get(), std::string(name), out);
}

long Win32Registry::writeValue(Hive hive, std::string_view path, const RegValue& value) {
    if (HasNul(value.name)) return regstatus::kInvalid;
    std::string data = value.data;
    if (IsText(value.type)) data.push_back('\0');
    if (data.size() > MAXDWORD) return regstatus::kInvalid;
    OpenKey key(hive, path, KEY_SET_VALUE);
    if (!key.ok()) return key.status();
    return RegSetValueExA(key.get(), value.name.c_str(), 0, value.type,
                          reinterpret_cast<const BYTE*>(data.data()),
                          static_cast<DWORD>(data.size()));
}

long Win32Registry::deleteValue(Hive hive, std::string_view path, std::string_view name) {
    if (HasNul(name)) return regstatus::kInvalid;
    OpenKey key(hive, path, KEY_SET_VALUE);
    if (!key.ok()) return key.status();
    return RegDeleteValueA(key.get(), std::string(name).c_str());
}

}  // namespace orvex::platform::win32
