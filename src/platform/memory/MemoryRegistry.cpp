// MemoryRegistry.cpp: the in-memory registry tree of the memory back-end.
#include <algorithm>
#include <unordered_map>

#include "platform/AnsiCase.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform::memory {

namespace {

// Subkey names hashed and compared without regard to case, for keys with many subkeys.
struct NoCaseHash {
    std::size_t operator()(std::string_view name) const {
        std::size_t h = 14695981039346656037ull;
        for (char c : name)
            h = (h ^ static_cast<unsigned char>(AnsiUpper(c))) * 1099511628211ull;
        return h;
    }
};

struct NoCaseEqual {
    bool operator()(std::string_view a, std::string_view b) const { return EqualsNoCase(a, b); }
};

}  // namespace

struct MemoryRegistry::Key {
    std::string name;
    std::string lastWrite;
    bool denied = false;
    std::vector<std::unique_ptr<Key>> subKeys;  // creation order, as enumeration gives them
    // The same subkeys by name; the views point into the subkeys' own names.
    std::unordered_map<std::string_view, Key*, NoCaseHash, NoCaseEqual> byName;
    std::vector<RegValue> values;

    Key* child(std::string_view wanted) {
        const auto found = byName.find(wanted);
        return found == byName.end() ? nullptr : found->second;
    }
    Key* adopt(std::unique_ptr<Key> key) {
        Key* added = key.get();
        byName.emplace(added->name, added);
        subKeys.push_back(std::move(key));
        return added;
    }
    void drop(Key* key) {
        byName.erase(key->name);
        std::erase_if(subKeys, [key](const auto& k) { return k.get() == key; });
    }
    RegValue* value(std::string_view wanted) {
        for (auto& v : values)
            if (EqualsNoCase(v.name, wanted)) return &v;
        return nullptr;
    }
    bool deniedBelow() const {
        if (denied) return true;
        return std::any_of(subKeys.begin(), subKeys.end(),
                           [](const auto& k) { return k->deniedBelow(); });
    }
};

namespace {

constexpr std::uint32_t kFirstHive = static_cast<std::uint32_t>(Hive::ClassesRoot);
constexpr std::size_t kHiveCount = 7;

std::optional<std::size_t> HiveIndex(Hive hive) {
    const auto n = static_cast<std::uint32_t>(hive) - kFirstHive;
    if (n >= kHiveCount) return std::nullopt;
    return n;
}

// A key path without the one closing backslash it may carry; std::nullopt when a component
// is empty, which makes the path invalid.
std::optional<std::string_view> KeyPath(std::string_view path) {
    if (!path.empty() && path.back() == '\\') path.remove_suffix(1);
    if (path.empty()) return path;
    if (path.front() == '\\' || path.back() == '\\' || path.find("\\\\") != path.npos)
        return std::nullopt;
    return path;
}

// Cuts the first component off a valid key path; lookups run on every registry call, so
// they walk the path in place.
std::string_view NextComponent(std::string_view& rest) {
    const std::size_t end = rest.find('\\');
    const std::string_view part = rest.substr(0, end);
    rest = end == rest.npos ? std::string_view() : rest.substr(end + 1);
    return part;
}

std::string DwordBytes(std::uint32_t v) {
    std::string bytes(4, '\0');
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<char>((v >> (8 * i)) & 0xFF);
    return bytes;
}

}  // namespace

MemoryRegistry::MemoryRegistry() {
    for (std::size_t i = 0; i < kHiveCount; ++i)
        roots_.push_back(std::make_unique<Key>());
}

MemoryRegistry::~MemoryRegistry() = default;

MemoryRegistry::Key* MemoryRegistry::find(Hive hive, std::string_view path) {
    const auto index = HiveIndex(hive);
    auto rest = KeyPath(path);
    if (!index || !rest) return nullptr;
    Key* key = roots_[*index].get();
    while (key != nullptr && !rest->empty())
        key = key->child(NextComponent(*rest));
    return key;
}

// Creates the missing keys of the path; nullptr for an invalid path or a denied parent.
MemoryRegistry::Key* MemoryRegistry::make(Hive hive, std::string_view path) {
    const auto index = HiveIndex(hive);
    auto rest = KeyPath(path);
    if (!index || !rest) return nullptr;
    Key* key = roots_[*index].get();
    while (!rest->empty()) {
        const std::string_view part = NextComponent(*rest);
        Key* next = key->child(part);
        if (next == nullptr) {
            if (key->denied) return nullptr;
            auto fresh = std::make_unique<Key>();
            fresh->name = std::string(part);
            fresh->lastWrite = timestamp_;
            next = key->adopt(std::move(fresh));
        }
        key = next;
    }
    return key;
}

MemoryRegistry::Key& MemoryRegistry::require(Hive hive, std::string_view path) {
    Key* key = make(hive, path);
    if (key == nullptr) Raise(failure::kInvalidCall);
    return *key;
}

bool MemoryRegistry::keyExists(Hive hive, std::string_view path) {
    return find(hive, path) != nullptr;
}

long MemoryRegistry::createKey(Hive hive, std::string_view path) {
    if (!HiveIndex(hive) || !KeyPath(path)) return regstatus::kInvalid;
    if (find(hive, path) != nullptr) return regstatus::kOk;
    return make(hive, path) != nullptr ? regstatus::kOk : regstatus::kAccessDenied;
}

long MemoryRegistry::deleteTree(Hive hive, std::string_view path) {
    const auto index = HiveIndex(hive);
    const auto valid = KeyPath(path);
    if (!index || !valid) return regstatus::kNotFound;
    if (valid->empty()) return regstatus::kInvalid;  // a hive's root stays
    const std::size_t cut = valid->rfind('\\');
    Key* parent = cut == valid->npos ? roots_[*index].get() : find(hive, valid->substr(0, cut));
    const std::string_view last = cut == valid->npos ? *valid : valid->substr(cut + 1);
    Key* key = parent == nullptr ? nullptr : parent->child(last);
    if (key == nullptr) return regstatus::kNotFound;
    if (parent->denied || key->deniedBelow()) return regstatus::kAccessDenied;
    parent->drop(key);
    parent->lastWrite = timestamp_;
    return regstatus::kOk;
}

long MemoryRegistry::listSubKeys(Hive hive, std::string_view path, std::vector<RegSubKey>& out) {
    out.clear();
    Key* key = find(hive, path);
    if (key == nullptr) return regstatus::kNotFound;
    for (const auto& k : key->subKeys)
        out.push_back(RegSubKey{k->name, k->lastWrite});
    return regstatus::kOk;
}

long MemoryRegistry::listValues(Hive hive, std::string_view path, std::vector<RegValue>& out) {
    out.clear();
    Key* key = find(hive, path);
    if (key == nullptr) return regstatus::kNotFound;
    out = key->values;
    return regstatus::kOk;
}

long MemoryRegistry::readValue(Hive hive, std::string_view path, std::string_view name,
                               RegValue& out) {
    Key* key = find(hive, path);
    RegValue* value = key == nullptr ? nullptr : key->value(name);
    if (value == nullptr) return regstatus::kNotFound;
    out = *value;
    return regstatus::kOk;
}

long MemoryRegistry::writeValue(Hive hive, std::string_view path, const RegValue& value) {
    Key* key = find(hive, path);
    if (key == nullptr) return regstatus::kNotFound;
    if (key->denied) return regstatus::kAccessDenied;
    if (RegValue* existing = key->value(value.name)) {
        existing->type = value.type;
        existing->data = value.data;
    } else {
        key->values.push_back(value);
    }
    key->lastWrite = timestamp_;
    return regstatus::kOk;
}

long MemoryRegistry::deleteValue(Hive hive, std::string_view path, std::string_view name) {
    Key* key = find(hive, path);
    if (key == nullptr || key->value(name) == nullptr) return regstatus::kNotFound;
    if (key->denied) return regstatus::kAccessDenied;
    std::erase_if(key->values, [name](const RegValue& v) { return EqualsNoCase(v.name, name); });
    key->lastWrite = timestamp_;
    return regstatus::kOk;
}

void MemoryRegistry::addKey(Hive hive, std::string_view path) {
    require(hive, path);
}

void MemoryRegistry::setValue(Hive hive, std::string_view path, std::string_view name,
                              std::uint32_t type, std::string_view data) {
    Key& key = require(hive, path);
    const bool wasDenied = key.denied;
    key.denied = false;  // scripting is the test's own hand, not the program's
    writeValue(hive, path, RegValue{std::string(name), type, std::string(data)});
    key.denied = wasDenied;
}

void MemoryRegistry::setString(Hive hive, std::string_view path, std::string_view name,
                               std::string_view text) {
    setValue(hive, path, name, regtype::kSz, text);
}

void MemoryRegistry::setExpandString(Hive hive, std::string_view path, std::string_view name,
                                     std::string_view text) {
    setValue(hive, path, name, regtype::kExpandSz, text);
}

void MemoryRegistry::setDword(Hive hive, std::string_view path, std::string_view name,
                              std::uint32_t value) {
    setValue(hive, path, name, regtype::kDword, DwordBytes(value));
}

void MemoryRegistry::setBinary(Hive hive, std::string_view path, std::string_view name,
                               std::string_view bytes) {
    setValue(hive, path, name, regtype::kBinary, bytes);
}

void MemoryRegistry::removeKey(Hive hive, std::string_view path) {
    Key* key = find(hive, path);
    if (key == nullptr) return;
    const bool wasDenied = key->denied;
    key->denied = false;
    if (deleteTree(hive, path) != regstatus::kOk) key->denied = wasDenied;
}

bool MemoryRegistry::hasValue(Hive hive, std::string_view path, std::string_view name) {
    return value(hive, path, name).has_value();
}

std::optional<RegValue> MemoryRegistry::value(Hive hive, std::string_view path,
                                              std::string_view name) {
    RegValue out;
    if (readValue(hive, path, name, out) != regstatus::kOk) return std::nullopt;
    return out;
}

std::optional<std::string> MemoryRegistry::data(Hive hive, std::string_view path,
                                                std::string_view name) {
    auto v = value(hive, path, name);
    if (!v) return std::nullopt;
    return v->data;
}

std::optional<std::uint32_t> MemoryRegistry::dword(Hive hive, std::string_view path,
                                                   std::string_view name) {
    auto v = value(hive, path, name);
    if (!v || v->type != regtype::kDword || v->data.size() != 4) return std::nullopt;
    std::uint32_t n = 0;
    for (int i = 3; i >= 0; --i)
        n = (n << 8) | static_cast<unsigned char>(v->data[i]);
    return n;
}

std::vector<std::string> MemoryRegistry::subKeyNames(Hive hive, std::string_view path) {
    std::vector<std::string> names;
    if (Key* key = find(hive, path))
        for (const auto& k : key->subKeys)
            names.push_back(k->name);
    return names;
}

std::vector<std::string> MemoryRegistry::valueNames(Hive hive, std::string_view path) {
    std::vector<std::string> names;
    if (Key* key = find(hive, path))
        for (const auto& v : key->values)
            names.push_back(v.name);
    return names;
}

void MemoryRegistry::setLastWrite(Hive hive, std::string_view path, std::string text) {
    require(hive, path).lastWrite = std::move(text);
}

void MemoryRegistry::denyWrites(Hive hive, std::string_view path, bool deny) {
    require(hive, path).denied = deny;
}

}  // namespace orvex::platform::memory
