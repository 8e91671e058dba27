// RegFile.cpp: the REGEDIT4 writer and reader. The reader works on views of the text and
// makes nothing larger than the text itself, whatever the text claims.
#include "platform/RegFile.h"

#include <array>
#include <charconv>
#include <cstdio>

#include "platform/AnsiCase.h"
#include "platform/RegistryHelper.h"

namespace orvex::platform {
namespace {

constexpr std::string_view kHeader = "REGEDIT4";
constexpr std::string_view kEol = "\r\n";
// regedit keeps its hex lines within 80 columns: continue once a line has reached this.
constexpr std::size_t kHexLineLimit = 76;
constexpr std::array kHives = {Hive::ClassesRoot, Hive::CurrentUser,   Hive::LocalMachine,
                               Hive::Users,       Hive::CurrentConfig, Hive::DynData};

bool IsTerminatedText(std::uint32_t type) {
    return type == regtype::kSz || type == regtype::kExpandSz;
}

// What no line of the file can hold, in a name or in quoted data.
bool HasLineBreak(std::string_view text) {
    return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

bool IsValidPath(std::string_view path) {
    if (HasLineBreak(path)) return false;
    if (path.empty()) return true;
    return path.front() != '\\' && path.back() != '\\' && path.find("\\\\") == path.npos;
}

// ---- writer ----

void AppendQuoted(std::string& text, std::string_view raw) {
    text += '"';
    for (char c : raw) {
        if (c == '\\' || c == '"') text += '\\';
        text += c;
    }
    text += '"';
}

std::string TypePrefix(std::uint32_t type) {
    if (type == regtype::kBinary) return "hex:";
    char prefix[16];
    std::snprintf(prefix, sizeof prefix, "hex(%x):", static_cast<unsigned>(type));
    return prefix;
}

std::string DwordText(std::string_view bytes) {
    std::uint32_t n = 0;
    for (std::size_t i = 4; i-- > 0;)
        n = n << 8 | static_cast<unsigned char>(bytes[i]);
    char text[16];
    std::snprintf(text, sizeof text, "dword:%08x", static_cast<unsigned>(n));
    return text;
}

// The bytes as "01,02", continued with ",\" and an indented line as regedit does.
void AppendHex(std::string& text, std::string_view bytes, std::size_t lineStart) {
    static constexpr char kDigits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0xF];
        if (i + 1 == bytes.size()) break;
        text += ',';
        if (text.size() - lineStart >= kHexLineLimit) {
            text += "\\\r\n  ";
            lineStart = text.size() - 2;
        }
    }
}

void AppendData(std::string& text, const RegValue& value, std::size_t lineStart) {
    const std::string_view data = value.data;
    if (value.type == regtype::kSz && !HasLineBreak(data)) {
        AppendQuoted(text, data);
    } else if (value.type == regtype::kDword && data.size() == 4) {
        text += DwordText(data);
    } else {
        text += TypePrefix(value.type);
        std::string bytes = value.data;
        if (IsTerminatedText(value.type)) bytes += '\0';
        AppendHex(text, bytes, lineStart);
    }
}

bool AppendValue(std::string& text, const RegValue& value) {
    if (HasLineBreak(value.name)) return false;
    const std::size_t lineStart = text.size();
    if (value.name.empty())
        text += '@';
    else
        AppendQuoted(text, value.name);
    text += '=';
    AppendData(text, value, lineStart);
    text += kEol;
    return true;
}

// ---- reader ----

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view TrimLeft(std::string_view s) {
    while (!s.empty() && IsBlank(s.front()))
        s.remove_prefix(1);
    return s;
}

std::string_view TrimRight(std::string_view s) {
    while (!s.empty() && IsBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

std::string Quote(std::string_view text) {
    std::string quoted(1, '"');
    quoted.append(text) += '"';
    return quoted;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

// A hex number of 1 to 8 digits filling the whole text.
std::optional<std::uint32_t> HexNumber(std::string_view digits) {
    std::uint32_t n = 0;
    if (digits.empty() || digits.size() > 8) return std::nullopt;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n, 16);
    if (ec != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return n;
}

class Reader {
  public:
    explicit Reader(std::string_view text) : rest_(text) {}

    std::optional<std::vector<RegFileKey>> read(std::string& error) {
        const bool ok = readAll();
        error = ok ? "" : "line " + std::to_string(lineNumber_) + ": " + error_;
        if (!ok) return std::nullopt;
        return std::move(keys_);
    }

  private:
    bool readAll() {
        std::string_view line;
        if (!nextLine(line) || TrimRight(line) != kHeader) return fail("no REGEDIT4 header");
        while (nextLine(line)) {
            line = TrimLeft(line);
            if (line.empty() || line.front() == ';') continue;
            if (!(line.front() == '[' ? readKey(line) : readValue(line))) return false;
        }
        return true;
    }

    bool nextLine(std::string_view& line) {
        if (rest_.empty() && lineNumber_ > 0) return false;
        const std::size_t end = rest_.find('\n');
        line = rest_.substr(0, end);
        rest_ = end == rest_.npos ? std::string_view() : rest_.substr(end + 1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        ++lineNumber_;
        return true;
    }

    bool fail(std::string what) {
        error_ = std::move(what);
        return false;
    }

    bool readKey(std::string_view line) {
        line = TrimRight(line);
        if (line.size() < 2 || line.back() != ']') return fail("a key line must end in \"]\"");
        const std::string_view name = line.substr(1, line.size() - 2);
        if (!name.empty() && name.front() == '-') return fail("key deletions are not read");
        const std::string_view hiveName = name.substr(0, name.find('\\'));
        const std::string_view path =
            hiveName.size() < name.size() ? name.substr(hiveName.size() + 1) : std::string_view();
        const auto hive = HiveNamed(hiveName);
        if (!hive) return fail("unknown root " + Quote(hiveName));
        if (!IsValidPath(path) || (path.empty() && hiveName.size() < name.size()))
            return fail("the key path has an empty part");
        keys_.push_back(RegFileKey{*hive, std::string(path), {}});
        return true;
    }

    static std::optional<Hive> HiveNamed(std::string_view name) {
        for (Hive hive : kHives)
            if (EqualsNoCase(name, RegistryHelper::HiveName(hive))) return hive;
        return std::nullopt;
    }

    bool readValue(std::string_view line) {
        if (keys_.empty()) return fail("a value before the first key");
        RegValue value;
        if (line.front() == '@') {
            line.remove_prefix(1);
        } else if (!readQuoted(line, value.name)) {
            return false;
        } else if (HasLineBreak(value.name)) {
            return fail("the value name holds a control character");
        }
        line = TrimLeft(line);
        if (line.empty() || line.front() != '=') return fail("\"=\" expected after the name");
        if (!readData(TrimLeft(line.substr(1)), value)) return false;
        keys_.back().values.push_back(std::move(value));
        return true;
    }

    // A quoted text at the start of `line`, which is left just after its closing quote.
    bool readQuoted(std::string_view& line, std::string& out) {
        if (line.empty() || line.front() != '"') return fail("a quoted text expected");
        for (std::size_t i = 1; i < line.size(); ++i) {
            if (line[i] == '"') {
                line.remove_prefix(i + 1);
                return true;
            }
            if (line[i] == '\\') {
                if (++i == line.size() || (line[i] != '\\' && line[i] != '"'))
                    return fail("only \\\\ and \\\" may follow a backslash");
            }
            out += line[i];
        }
        return fail("the quoted text is not closed");
    }

    bool readData(std::string_view data, RegValue& value) {
        if (data.starts_with('"')) {
            value.type = regtype::kSz;
            if (!readQuoted(data, value.data)) return false;
            return TrimRight(data).empty() || fail("text after the closing quote");
        }
        if (StartsWithNoCase(data, "dword:")) return readDword(data.substr(6), value);
        if (StartsWithNoCase(data, "hex:")) {
            value.type = regtype::kBinary;
            return readHex(data.substr(4), value);
        }
        if (StartsWithNoCase(data, "hex(")) {
            const std::size_t close = data.find("):");
            const auto type =
                close == data.npos ? std::nullopt : HexNumber(data.substr(4, close - 4));
            if (!type) return fail("a type number in hex expected in hex(N):");
            value.type = *type;
            return readHex(data.substr(close + 2), value);
        }
        if (data.starts_with('-')) return fail("value deletions are not read");
        return fail("unknown data; expected \"...\", dword:, hex: or hex(N):");
    }

    bool readDword(std::string_view digits, RegValue& value) {
        const auto n = HexNumber(TrimRight(digits));
        if (!n) return fail("dword: takes 1 to 8 hex digits");
        value.type = regtype::kDword;
        for (int i = 0; i < 4; ++i)
            value.data += static_cast<char>((*n >> (8 * i)) & 0xFF);
        return true;
    }

    // "01,02,\" continued on the following lines, then the bytes into `value`.
    bool readHex(std::string_view first, RegValue& value) {
        std::string list(TrimRight(first));
        while (!list.empty() && list.back() == '\\') {
            list.pop_back();
            std::string_view next;
            if (!nextLine(next)) return fail("the hex data goes on past the end");
            list += TrimRight(TrimLeft(next));
        }
        if (!readBytes(list, value.data)) return false;
        if (IsTerminatedText(value.type) && !value.data.empty() && value.data.back() == '\0')
            value.data.pop_back();
        return true;
    }

    bool readBytes(std::string_view list, std::string& out) {
        if (TrimLeft(list).empty()) return true;
        std::size_t start = 0;
        while (true) {
            const std::size_t comma = list.find(',', start);
            const std::string_view piece = TrimRight(TrimLeft(list.substr(start, comma - start)));
            if (comma == list.npos && piece.empty() && start > 0) return true;  // a final ","
            const auto byte = piece.size() <= 2 ? HexNumber(piece) : std::nullopt;
            if (!byte) return fail(Quote(piece) + " is no hex byte");
            out += static_cast<char>(*byte);
            if (comma == list.npos) return true;
            start = comma + 1;
        }
    }

    std::string_view rest_;
    std::size_t lineNumber_ = 0;
    std::vector<RegFileKey> keys_;
    std::string error_;
};

}  // namespace

std::optional<std::string> WriteRegFile(const std::vector<RegFileKey>& keys) {
    std::string text = std::string(kHeader) + std::string(kEol);
    for (const RegFileKey& key : keys) {
        const std::string hive = RegistryHelper::HiveName(key.hive);
        if (hive.empty() || !IsValidPath(key.path)) return std::nullopt;
        text.append(kEol).append("[").append(hive);
        if (!key.path.empty()) text.append("\\").append(key.path);
        text.append("]").append(kEol);
        for (const RegValue& value : key.values)
            if (!AppendValue(text, value)) return std::nullopt;
    }
    return text.append(kEol);
}

std::optional<std::vector<RegFileKey>> ReadRegFile(std::string_view text, std::string& error) {
    return Reader(text).read(error);
}

}  // namespace orvex::platform
