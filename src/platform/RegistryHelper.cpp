// RegistryHelper.cpp: the registry access object and the text forms of registry data.
#include "platform/RegistryHelper.h"

#include <algorithm>
#include <charconv>

#include "platform/Failure.h"
#include "platform/Platform.h"

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

// The saved-key file: a header line, then for each key a "K" line with its path below the
// saved key, followed by one "V" line per value (name, type, data), tab-separated, with
// control characters and "%" written as "%XX".
constexpr std::string_view kSavedKeyHeader = "Orvex Sentry saved key 1";

std::string Escape(std::string_view bytes) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    for (char c : bytes) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u == 0x7F || c == '%') {
            out += '%';
            out += hex[u >> 4];
            out += hex[u & 0xF];
        } else {
            out += c;
        }
    }
    return out;
}

std::optional<std::string> Unescape(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out += text[i];
            continue;
        }
        unsigned value = 0;
        if (i + 2 >= text.size()) return std::nullopt;
        const auto [end, ec] = std::from_chars(text.data() + i + 1, text.data() + i + 3, value, 16);
        if (ec != std::errc() || end != text.data() + i + 3) return std::nullopt;
        out += static_cast<char>(value);
        i += 2;
    }
    return out;
}

std::vector<std::string_view> SplitTabs(std::string_view line) {
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    for (std::size_t tab = line.find('\t'); tab != std::string_view::npos;
         tab = line.find('\t', start)) {
        fields.push_back(line.substr(start, tab - start));
        start = tab + 1;
    }
    fields.push_back(line.substr(start));
    return fields;
}

struct SavedKey {
    std::string path;  // below the saved key, "" for the key itself
    std::vector<RegValue> values;
};

std::optional<std::vector<SavedKey>> ParseSavedKeys(const std::string& text) {
    std::vector<SavedKey> keys;
    std::size_t start = 0;
    bool first = true;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        std::string_view line(text.data() + start, end - start);
        start = end + 1;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (first) {
            if (line != kSavedKeyHeader) return std::nullopt;
            first = false;
            continue;
        }
        const auto fields = SplitTabs(line);
        if (fields.size() == 2 && fields[0] == "K") {
            auto path = Unescape(fields[1]);
            if (!path) return std::nullopt;
            keys.push_back(SavedKey{*path, {}});
        } else if (fields.size() == 4 && fields[0] == "V" && !keys.empty()) {
            auto name = Unescape(fields[1]);
            auto type = ParseNumber(fields[2], 4);
            auto data = Unescape(fields[3]);
            if (!name || !type || !data) return std::nullopt;
            keys.back().values.push_back(RegValue{*name, static_cast<std::uint32_t>(*type), *data});
        } else if (!line.empty()) {
            return std::nullopt;
        }
    }
    if (first || keys.empty() || !keys.front().path.empty()) return std::nullopt;
    return keys;
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
bool AppendTree(RegistryBackend& backend, Hive hive, const std::string& path,
                const std::string& relative, std::string& text) {
    std::vector<RegValue> values;
    std::vector<RegSubKey> subKeys;
    if (backend.listValues(hive, path, values) != regstatus::kOk ||
        backend.listSubKeys(hive, path, subKeys) != regstatus::kOk)
        return false;
    text.append("K\t").append(Escape(relative)).append("\r\n");
    for (const auto& v : values)
        text.append("V\t")
            .append(Escape(v.name))
            .append("\t")
            .append(std::to_string(v.type))
            .append("\t")
            .append(Escape(v.data))
            .append("\r\n");
    for (const auto& k : subKeys)
        if (!AppendTree(backend, hive, Join(path, k.name), Join(relative, k.name), text))
            return false;
    return true;
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
    std::string text = std::string(kSavedKeyHeader) + "\r\n";
    if (!backend_.keyExists(hive, keyPath) || !AppendTree(backend_, hive, keyPath, "", text))
        return false;
    try {
        FileSystem& files = Files();
        if (files.fileExists(file)) return false;
        auto stream = files.open(file, OpenMode::Write);
        stream->write(text.data(), text.size());
        stream->flush();
        return true;
    } catch (const Failure&) {
        return false;
    }
}

bool RegistryHelper::RestoreKey(const std::string& file, Hive hive, const std::string& keyPath) {
    const auto text = ReadWholeFile(file);
    const auto keys = text ? ParseSavedKeys(*text) : std::nullopt;
    if (!keys) return false;
    if (backend_.createKey(hive, keyPath) != regstatus::kOk || !ClearKey(backend_, hive, keyPath))
        return false;
    for (const auto& key : *keys) {
        const std::string path = Join(keyPath, key.path);
        if (backend_.createKey(hive, path) != regstatus::kOk) return false;
        for (const auto& v : key.values)
            if (backend_.writeValue(hive, path, v) != regstatus::kOk) return false;
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
