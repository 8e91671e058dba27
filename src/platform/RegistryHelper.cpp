// RegistryHelper.cpp: the registry access object and the text forms of registry data.
#include "platform/RegistryHelper.h"

#include <algorithm>
#include <charconv>

#include "platform/AnsiCase.h"
#include "platform/Failure.h"
#include "platform/Platform.h"
#include "platform/RegFile.h"

namespace orvex::platform {
namespace {

std::string Join(const std::string& path, const std::string& name) {
    if (path.empty()) return name;
    if (name.empty()) return path;
    return path.back() == '\\' ? path + name : path + "\\" + name;
}

std::uint64_t LittleEndian(const std::string& bytes, std::size_t width) {
    std::uint64_t n = 0;
    for (std::size_t i = std::min(width, bytes.size()); i-- > 0;)
        n = (n << 8) | static_cast<unsigned char>(bytes[i]);
    return n;
}

std::string LittleEndianBytes(std::uint64_t n, std::size_t width) {
    std::string bytes(width, '\0');
    for (std::size_t i = 0; i < width; ++i)
        bytes[i] = static_cast<char>((n >> (8 * i)) & 0xFF);
    return bytes;
}

// A decimal text as an unsigned number of `width` bytes; a negative number wraps.
std::optional<std::uint64_t> ParseNumber(std::string_view text, std::size_t width) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    const bool negative = !text.empty() && text.front() == '-';
    if (negative) text.remove_prefix(1);
    std::uint64_t n = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), n);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    const std::uint64_t limit = width == 4 ? 0xFFFFFFFFull : ~0ull;
    if (n > (negative ? limit / 2 + 1 : limit)) return std::nullopt;
    return (negative ? ~n + 1 : n) & limit;
}

bool IsText(std::uint32_t type) {
    return type == regtype::kSz || type == regtype::kExpandSz || type == regtype::kMultiSz;
}

std::optional<std::string> ReadWholeFile(const std::string& file) {
    try {
        auto stream = Files().open(file, OpenMode::Read);
        std::string bytes;
        char buffer[4096];
        while (std::size_t n = stream->read(buffer, sizeof buffer))
            bytes.append(buffer, n);
        return bytes;
    } catch (const Failure&) {
        return std::nullopt;
    }
}

}  // namespace

RegistryHelper::RegistryHelper() : RegistryHelper(Registry()) {}

RegistryHelper::RegistryHelper(RegistryBackend& backend) : backend_(backend) {}

std::string RegistryHelper::selectedPath() const {
    return path_;
}

bool RegistryHelper::KeyExists() {
    const std::string path = subKey_ ? Join(path_, *subKey_) : path_;
    return backend_.keyExists(hive_, path);
}

long RegistryHelper::CreateKey(const std::string& name) {
    return backend_.createKey(hive_, Join(selectedPath(), name));
}

long RegistryHelper::DeleteKey(const std::string& name) {
    const std::string path = Join(selectedPath(), name);
    // With no key selected an empty name would take the whole root with it.
    if (path.empty()) return regstatus::kInvalid;
    return backend_.deleteTree(hive_, path);
}

long RegistryHelper::DeleteValue(const std::string& name) {
    return backend_.deleteValue(hive_, selectedPath(), name);
}

std::vector<std::string> RegistryHelper::EnumerateKeys(Hive hive, const std::string& path) {
    std::vector<RegSubKey> keys;
    std::vector<std::string> items;
    if (backend_.listSubKeys(hive, path, keys) != regstatus::kOk) return items;
    for (const auto& k : keys)
        items.push_back(k.name + "|" + k.lastWrite);
    return items;
}

std::vector<std::string> RegistryHelper::EnumerateValues(Hive hive, const std::string& path) {
    std::vector<RegValue> values;
    std::vector<std::string> items;
    if (backend_.listValues(hive, path, values) != regstatus::kOk) return items;
    for (const auto& v : values)
        items.push_back(v.name);
    return items;
}

std::vector<std::string> RegistryHelper::EnumerateValueData(Hive hive, const std::string& path) {
    std::vector<RegValue> values;
    std::vector<std::string> items;
    if (backend_.listValues(hive, path, values) != regstatus::kOk) return items;
    for (const auto& v : values)
        items.push_back(DataText(v) + "|" + v.name);
    return items;
}

std::vector<std::string> RegistryHelper::EnumerateAllValues(Hive hive, const std::string& path) {
    std::vector<RegValue> values;
    std::vector<std::string> items;
    if (backend_.listValues(hive, path, values) != regstatus::kOk) return items;
    for (const auto& v : values)
        items.push_back(v.name + "|" + DataText(v) + "|" + std::to_string(v.type));
    return items;
}

std::string RegistryHelper::GetValue(const std::string& name, const std::string& defaultValue,
                                     bool binaryAsText) {
    RegValue value;
    if (backend_.readValue(hive_, selectedPath(), name, value) != regstatus::kOk)
        return defaultValue;
    if (value.type == regtype::kDword || value.type == regtype::kQword) return DataText(value);
    (void)binaryAsText;  // text or bytes, the characters are the same
    return value.data;
}

bool RegistryHelper::SetValue(const std::string& name, const std::string& data,
                              std::uint32_t type) {
    RegValue value{name, type, data};
    if (type == regtype::kDword || type == regtype::kQword) {
        const std::size_t width = type == regtype::kDword ? 4 : 8;
        const auto n = ParseNumber(data, width);
        if (!n) return false;
        value.data = LittleEndianBytes(*n, width);
    }
    const std::string path = selectedPath();
    if (!backend_.keyExists(hive_, path) && backend_.createKey(hive_, path) != regstatus::kOk)
        return false;
    return backend_.writeValue(hive_, path, value) == regstatus::kOk;
}

namespace {
// The key and every key below it, parents before their subkeys.
bool CollectTree(RegistryBackend& backend, Hive hive, const std::string& path,
                 std::vector<RegFileKey>& keys) {
    std::vector<RegSubKey> subKeys;
    keys.push_back(RegFileKey{hive, path, {}});
    if (backend.listValues(hive, path, keys.back().values) != regstatus::kOk ||
        backend.listSubKeys(hive, path, subKeys) != regstatus::kOk)
        return false;
    for (const auto& k : subKeys)
        if (!CollectTree(backend, hive, Join(path, k.name), keys)) return false;
    return true;
}

// Where a key of the file goes: the first key is `keyPath`, the others keep their place
// below it. std::nullopt for a key elsewhere, which a backup of one key never holds.
std::optional<std::string> PlaceBelow(const RegFileKey& first, const RegFileKey& key,
                                      const std::string& keyPath) {
    const std::string& base = first.path;
    if (key.hive != first.hive || key.path.size() < base.size() ||
        !EqualsNoCase(std::string_view(key.path).substr(0, base.size()), base))
        return std::nullopt;
    std::string_view below = std::string_view(key.path).substr(base.size());
    if (!base.empty() && !below.empty()) {
        if (below.front() != '\\') return std::nullopt;
        below.remove_prefix(1);
    }
    return Join(keyPath, std::string(below));
}

// Empties a key of its values and subkeys.
bool ClearKey(RegistryBackend& backend, Hive hive, const std::string& path) {
    std::vector<RegValue> values;
    std::vector<RegSubKey> subKeys;
    if (backend.listValues(hive, path, values) != regstatus::kOk ||
        backend.listSubKeys(hive, path, subKeys) != regstatus::kOk)
        return false;
    for (const auto& v : values)
        if (backend.deleteValue(hive, path, v.name) != regstatus::kOk) return false;
    for (const auto& k : subKeys)
        if (backend.deleteTree(hive, Join(path, k.name)) != regstatus::kOk) return false;
    return true;
}
}  // namespace

bool RegistryHelper::SaveKey(Hive hive, const std::string& keyPath, const std::string& file) {
    std::string root = keyPath;
    // The file names the key without the closing backslash a path may carry.
    if (!root.empty() && root.back() == '\\') root.pop_back();
    std::vector<RegFileKey> keys;
    if (!backend_.keyExists(hive, root) || !CollectTree(backend_, hive, root, keys)) return false;
    const auto text = WriteRegFile(keys);
    if (!text) return false;
    try {
        FileSystem& files = Files();
        if (files.fileExists(file)) return false;
        auto stream = files.open(file, OpenMode::Write);
        stream->write(text->data(), text->size());
        stream->flush();
        return true;
    } catch (const Failure&) {
        return false;
    }
}

bool RegistryHelper::RestoreKey(const std::string& file, Hive hive, const std::string& keyPath) {
    const auto text = ReadWholeFile(file);
    std::string error;
    const auto keys = text ? ReadRegFile(*text, error) : std::nullopt;
    if (!keys || keys->empty()) return false;
    // Every place is known before the registry is touched.
    std::vector<std::string> places;
    for (const RegFileKey& key : *keys) {
        auto place = PlaceBelow(keys->front(), key, keyPath);
        if (!place) return false;
        places.push_back(std::move(*place));
    }
    if (backend_.createKey(hive, keyPath) != regstatus::kOk || !ClearKey(backend_, hive, keyPath))
        return false;
    for (std::size_t i = 0; i < keys->size(); ++i) {
        if (backend_.createKey(hive, places[i]) != regstatus::kOk) return false;
        for (const auto& v : (*keys)[i].values)
            if (backend_.writeValue(hive, places[i], v) != regstatus::kOk) return false;
    }
    return true;
}

std::string RegistryHelper::DataText(const RegValue& value) {
    if (IsText(value.type)) return value.data;
    if (value.type == regtype::kDword) return std::to_string(LittleEndian(value.data, 4));
    if (value.type == regtype::kQword) return std::to_string(LittleEndian(value.data, 8));
    return BinaryText(value.data);
}

std::string RegistryHelper::BinaryText(const std::string& bytes) {
    std::string text;
    text.reserve(bytes.size() * 4);
    for (char c : bytes) {
        text += std::to_string(static_cast<unsigned char>(c));
        text += ',';
    }
    return text;
}

std::optional<std::string> RegistryHelper::BinaryFromText(const std::string& text) {
    std::string bytes;
    std::size_t start = 0;
    for (std::size_t comma = text.find(','); comma != std::string::npos;
         comma = text.find(',', start)) {
        const auto n = ParseNumber(std::string_view(text).substr(start, comma - start), 4);
        if (!n || *n > 255 || text[start] == '-') return std::nullopt;
        bytes += static_cast<char>(*n);
        start = comma + 1;
    }
    return bytes;
}

std::string RegistryHelper::HiveName(Hive hive) {
    switch (hive) {
        case Hive::ClassesRoot:
            return "HKEY_CLASSES_ROOT";
        case Hive::CurrentUser:
            return "HKEY_CURRENT_USER";
        case Hive::LocalMachine:
            return "HKEY_LOCAL_MACHINE";
        case Hive::Users:
            return "HKEY_USERS";
        case Hive::CurrentConfig:
            return "HKEY_CURRENT_CONFIG";
        case Hive::DynData:
            return "HKEY_DYN_DATA";
        default:
            return "";
    }
}

std::optional<Hive> RegistryHelper::HiveOfName(std::string_view name) {
    for (Hive hive : {Hive::ClassesRoot, Hive::CurrentUser, Hive::LocalMachine, Hive::Users,
                      Hive::CurrentConfig, Hive::DynData})
        if (HiveName(hive) == name) return hive;
    return std::nullopt;
}

}  // namespace orvex::platform
