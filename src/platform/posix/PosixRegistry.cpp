// PosixRegistry.cpp: the in-memory registry and its JSON file.
#include "platform/posix/PosixRegistry.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>

#include "platform/posix/PosixFd.h"
#include "platform/posix/PosixSystem.h"

namespace orvex::platform {
namespace {

using memory::MemoryRegistry;
using nlohmann::json;

constexpr int kFormat = 1;
// Windows allows 512 levels of keys; deeper paths are refused so that the recursive save
// and load stay shallow.
constexpr std::size_t kMaxDepth = 512;
constexpr off_t kMaxFileBytes = 256 * 1024 * 1024;

struct HiveName {
    Hive hive;
    const char* name;
};
constexpr HiveName kHives[] = {
    {Hive::ClassesRoot, "HKEY_CLASSES_ROOT"},
    {Hive::CurrentUser, "HKEY_CURRENT_USER"},
    {Hive::LocalMachine, "HKEY_LOCAL_MACHINE"},
    {Hive::Users, "HKEY_USERS"},
    {Hive::PerformanceData, "HKEY_PERFORMANCE_DATA"},
    {Hive::CurrentConfig, "HKEY_CURRENT_CONFIG"},
    {Hive::DynData, "HKEY_DYN_DATA"},
};

struct Corrupt : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::size_t Depth(std::string_view path) {
    if (path.empty()) return 0;
    return static_cast<std::size_t>(std::count(path.begin(), path.end(), '\\')) + 1;
}

// Registry texts are ANSI bytes, not UTF-8. Each byte is kept as the code point of the
// same number, so every text goes through JSON and back unchanged.
std::string BytesToJsonText(std::string_view bytes) {
    std::string out;
    for (char c : bytes) {
        auto b = static_cast<unsigned char>(c);
        if (b < 0x80) {
            out += c;
        } else {
            out += static_cast<char>(0xC0 | (b >> 6));
            out += static_cast<char>(0x80 | (b & 0x3F));
        }
    }
    return out;
}

std::string JsonTextToBytes(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto b = static_cast<unsigned char>(text[i]);
        if (b < 0x80) {
            out += text[i];
            continue;
        }
        if ((b & 0xFE) != 0xC2 || i + 1 >= text.size()) throw Corrupt("a text beyond U+00FF");
        auto next = static_cast<unsigned char>(text[++i]);
        out += static_cast<char>(((b & 0x03) << 6) | (next & 0x3F));
    }
    return out;
}

std::string ToHex(std::string_view bytes) {
    static const char* digits = "0123456789abcdef";
    std::string out;
    for (char c : bytes) {
        auto b = static_cast<unsigned char>(c);
        out += digits[b >> 4];
        out += digits[b & 0xF];
    }
    return out;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw Corrupt("a bad hex digit");
}

std::string FromHex(const std::string& hex) {
    if (hex.size() % 2 != 0) throw Corrupt("hex data of odd length");
    std::string out;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        out += static_cast<char>(HexDigit(hex[i]) * 16 + HexDigit(hex[i + 1]));
    }
    return out;
}

bool IsText(std::uint32_t type) {
    return type == regtype::kSz || type == regtype::kExpandSz;
}

std::string Child(const std::string& path, const std::string& name) {
    return path.empty() ? name : path + "\\" + name;
}

// ---- Saving -------------------------------------------------------------------------

json ValueJson(const RegValue& v) {
    json out = {{"name", BytesToJsonText(v.name)}, {"type", v.type}};
    if (IsText(v.type)) {
        out["text"] = BytesToJsonText(v.data);
    } else {
        out["hex"] = ToHex(v.data);
    }
    return out;
}

json KeyJson(MemoryRegistry& tree, Hive hive, const std::string& path) {
    std::vector<RegValue> values;
    std::vector<RegSubKey> subKeys;
    tree.listValues(hive, path, values);
    tree.listSubKeys(hive, path, subKeys);
    json out = {{"values", json::array()}, {"keys", json::array()}};
    for (const auto& v : values)
        out["values"].push_back(ValueJson(v));
    for (const auto& k : subKeys) {
        json child = KeyJson(tree, hive, Child(path, k.name));
        child["name"] = BytesToJsonText(k.name);
        child["lastWrite"] = BytesToJsonText(k.lastWrite);
        out["keys"].push_back(std::move(child));
    }
    return out;
}

json RegistryJson(MemoryRegistry& tree) {
    json hives = json::object();
    for (const auto& h : kHives) {
        json root = KeyJson(tree, h.hive, "");
        if (!root["values"].empty() || !root["keys"].empty()) hives[h.name] = std::move(root);
    }
    return json{{"format", kFormat}, {"hives", std::move(hives)}};
}

// ---- Loading ------------------------------------------------------------------------

const json& Field(const json& object, const char* name) {
    auto it = object.find(name);
    if (it == object.end()) throw Corrupt(std::string("no \"") + name + "\"");
    return *it;
}

std::string TextField(const json& object, const char* name) {
    const json& field = Field(object, name);
    if (!field.is_string()) throw Corrupt(std::string("\"") + name + "\" is not a text");
    return JsonTextToBytes(field.get<std::string>());
}

const json& ArrayField(const json& object, const char* name) {
    const json& field = Field(object, name);
    if (!field.is_array()) throw Corrupt(std::string("\"") + name + "\" is not a list");
    return field;
}

void LoadValue(MemoryRegistry& tree, Hive hive, const std::string& path, const json& v) {
    if (!v.is_object()) throw Corrupt("a value is not an object");
    const json& type = Field(v, "type");
    if (!type.is_number_unsigned() || type.get<std::uint64_t>() > UINT32_MAX) {
        throw Corrupt("a bad value type");
    }
    auto t = type.get<std::uint32_t>();
    std::string data = IsText(t) ? TextField(v, "text") : FromHex(TextField(v, "hex"));
    tree.setValue(hive, path, TextField(v, "name"), t, data);
}

void LoadKey(MemoryRegistry& tree, Hive hive, const std::string& path, const json& key,
             std::size_t depth) {
    if (!key.is_object()) throw Corrupt("a key is not an object");
    if (depth > kMaxDepth) throw Corrupt("keys nested too deep");
    for (const json& v : ArrayField(key, "values"))
        LoadValue(tree, hive, path, v);
    for (const json& child : ArrayField(key, "keys")) {
        if (!child.is_object()) throw Corrupt("a key is not an object");
        std::string name = TextField(child, "name");
        if (name.empty() || name.find('\\') != std::string::npos) throw Corrupt("a bad key name");
        std::string childPath = Child(path, name);
        tree.addKey(hive, childPath);
        LoadKey(tree, hive, childPath, child, depth + 1);
        // Last, since filling the key stamped it afresh.
        tree.setLastWrite(hive, childPath, TextField(child, "lastWrite"));
    }
}

void LoadRegistry(MemoryRegistry& tree, const json& doc) {
    if (!doc.is_object()) throw Corrupt("not a JSON object");
    const json& format = Field(doc, "format");
    if (!format.is_number_integer() || format.get<int>() != kFormat) {
        throw Corrupt("an unknown format");
    }
    const json& hives = Field(doc, "hives");
    if (!hives.is_object()) throw Corrupt("\"hives\" is not an object");
    for (const auto& item : hives.items()) {
        // Named copies: clang 14 cannot capture structured bindings in a lambda.
        const std::string name = item.key();
        const json& root = item.value();
        auto known = std::find_if(std::begin(kHives), std::end(kHives),
                                  [&](const HiveName& h) { return name == h.name; });
        if (known == std::end(kHives)) throw Corrupt("an unknown hive " + name);
        LoadKey(tree, known->hive, "", root, 0);
    }
}

enum class ReadResult { Ok, Missing, Failed };

ReadResult ReadFile(const std::string& file, std::string& text, std::string& reason) {
    Fd fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!fd) {
        if (errno == ENOENT) return ReadResult::Missing;
        reason = std::strerror(errno);
        return ReadResult::Failed;
    }
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > kMaxFileBytes) {
        reason = "not a regular file of a sensible size";
        return ReadResult::Failed;
    }
    text.resize(static_cast<std::size_t>(st.st_size));
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t n = ::read(fd.get(), text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    text.resize(done);
    return ReadResult::Ok;
}

std::string ParentOf(const std::string& file) {
    std::size_t slash = file.find_last_of('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : file.substr(0, slash);
}

bool WriteDurably(const std::string& file, const std::string& text) {
    ::mkdir(ParentOf(file).c_str(), 0700);  // $HOME/.orvex on first use
    std::string temp = file + ".tmp." + std::to_string(::getpid());
    Fd fd(::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (!fd) return false;
    bool ok = WriteAll(fd.get(), text.data(), text.size()) && ::fsync(fd.get()) == 0;
    fd.reset();
    if (ok && ::rename(temp.c_str(), file.c_str()) == 0) {
        SyncFolder(ParentOf(file));
        return true;
    }
    int err = errno;
    ::unlink(temp.c_str());
    errno = err;
    return false;
}

}  // namespace

std::string DefaultRegistryPath() {
    const char* explicitPath = std::getenv("ORVEX_REGISTRY");
    if (explicitPath != nullptr && explicitPath[0] != '\0') return explicitPath;
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] != '\0') return std::string(home) + "/.orvex/registry.json";
    return {};
}

PosixRegistry::PosixRegistry(std::string file)
    : file_(std::move(file)), tree_(std::make_unique<MemoryRegistry>()) {
    load();
}

void PosixRegistry::load() {
    if (file_.empty()) return;
    std::string text, reason;
    ReadResult read = ReadFile(file_, text, reason);
    if (read == ReadResult::Missing) return;
    if (read == ReadResult::Failed) {
        std::cerr << "orvex: cannot read the registry file " << file_ << " (" << reason
                  << "); starting with an empty registry\n";
        return;
    }
    try {
        json doc = json::parse(text);
        LoadRegistry(*tree_, doc);
        return;
    } catch (const std::exception& e) {
        reason = e.what();
    }
    tree_ = std::make_unique<MemoryRegistry>();
    std::string kept = file_ + ".corrupt";
    bool moved = ::rename(file_.c_str(), kept.c_str()) == 0;
    std::cerr << "orvex: the registry file " << file_ << " is corrupt (" << reason
              << "); starting with an empty registry"
              << (moved ? "; the old file is kept as " + kept : std::string()) << "\n";
}

void PosixRegistry::save() {
    if (file_.empty()) return;
    if (WriteDurably(file_, RegistryJson(*tree_).dump(1))) return;
    if (!std::exchange(warnedSave_, true)) {
        std::cerr << "orvex: cannot save the registry file " << file_ << " ("
                  << std::strerror(errno) << "); changes are kept in memory only\n";
    }
}

long PosixRegistry::saved(long status) {
    if (status == regstatus::kOk) save();
    return status;
}

void PosixRegistry::stampNow() {
    LocalTime t = LocalNow();
    tree_->setTimestamp(UsShortDate(t) + " " + UsLongTime(t));
}

bool PosixRegistry::keyExists(Hive hive, std::string_view path) {
    return tree_->keyExists(hive, path);
}

long PosixRegistry::createKey(Hive hive, std::string_view path) {
    if (Depth(path) > kMaxDepth) return regstatus::kInvalid;
    if (tree_->keyExists(hive, path)) return regstatus::kOk;
    stampNow();
    return saved(tree_->createKey(hive, path));
}

long PosixRegistry::deleteTree(Hive hive, std::string_view path) {
    stampNow();
    return saved(tree_->deleteTree(hive, path));
}

long PosixRegistry::listSubKeys(Hive hive, std::string_view path, std::vector<RegSubKey>& out) {
    return tree_->listSubKeys(hive, path, out);
}

long PosixRegistry::listValues(Hive hive, std::string_view path, std::vector<RegValue>& out) {
    return tree_->listValues(hive, path, out);
}

long PosixRegistry::readValue(Hive hive, std::string_view path, std::string_view name,
                              RegValue& out) {
    return tree_->readValue(hive, path, name, out);
}

long PosixRegistry::writeValue(Hive hive, std::string_view path, const RegValue& value) {
    stampNow();
    return saved(tree_->writeValue(hive, path, value));
}

long PosixRegistry::deleteValue(Hive hive, std::string_view path, std::string_view name) {
    stampNow();
    return saved(tree_->deleteValue(hive, path, name));
}

}  // namespace orvex::platform
