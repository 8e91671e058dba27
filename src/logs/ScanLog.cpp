// ScanLog.cpp: the records of Logged.txt, one enciphered record per action word.
#include "logs/ScanLog.h"

#include <optional>
#include <utility>

#include "core/AppState.h"
#include "core/DateText.h"
#include "core/Text.h"
#include "core/TextFile.h"
#include "core/Version.h"
#include "definitions/Cipher.h"

namespace orvex {
namespace {

constexpr const char* kCrLf = "\r\n";
constexpr const char* kSeparator = "*****************";

// What a record is made of, gathered once per call.
struct Pieces {
    const std::string& location;
    const std::string& item;
    const std::string& name;
    std::string version;
    std::string definitionDate;
    std::string now;
};

std::string VersionPiece() {
    return std::to_string(kVersion.major) + "." + std::to_string(kVersion.minor) + "." +
           std::to_string(kVersion.revision);
}

Pieces GatherPieces(const std::string& location, const std::string& item, const std::string& name) {
    std::string now = GeneralDate(Now());
    return Pieces{location, item, name, VersionPiece(), App().DefinitionDate, std::move(now)};
}

std::string Opening(const Pieces& p) {
    return Lng(230) + p.version + Lng(231) + p.definitionDate + Lng(232) + p.now + kCrLf + Lng(233);
}

std::string Closing() {
    return std::string(kCrLf) + kSeparator + kCrLf;
}

// opening, label, closing: the start of a scan and the scheduled start.
std::string EventRecord(const Pieces& p, int label) {
    return Opening(p) + Lng(label) + Closing();
}

// opening, label, location ": " item, closing.
std::string ItemRecord(const Pieces& p, int label) {
    return Opening(p) + Lng(label) + p.location + ": " + p.item + Closing();
}

// The rename and manual-removal records carry their own heading instead of the
// opening.
std::string HeadedItemRecord(const Pieces& p, int first) {
    return Lng(first) + p.version + Lng(231) + p.definitionDate + Lng(232) + p.now + kCrLf +
           Lng(first + 3) + Lng(first + 4) + p.location + ": " + p.item + Closing();
}

// The plain text of the record for `action`; nothing for a word that writes
// none.
std::optional<std::string> RecordText(const std::string& action, const Pieces& p) {
    if (action == "File In List Not Found") return std::nullopt;
    if (action == "Command") return Opening(p) + Lng(238) + p.name + Closing();
    if (action == "Scheduled") return EventRecord(p, 243);
    if (action == "Start R") return EventRecord(p, 252);
    if (action == "Start F") return EventRecord(p, 261);
    if (action == "Start C") return EventRecord(p, 270);
    if (action == "Start M") return EventRecord(p, 279);
    if (action == "found")
        return Opening(p) + Lng(288) + p.location + p.item + kCrLf + Lng(289) + p.name + Closing();
    if (action == "delete")
        return kSeparator + p.now + Lng(294) + p.location + " : " + p.item + kCrLf + kSeparator;
    if (action == "rename") return HeadedItemRecord(p, 300);
    if (action == "Manual Intervention Required") return HeadedItemRecord(p, 309);
    if (action == "host") return ItemRecord(p, 322);
    if (action == "created") return ItemRecord(p, 331);
    if (action == "Add to Exclusion") return ItemRecord(p, 340);
    if (action == kExcludedWord) return ItemRecord(p, 349);
    if (action == "suspect") return ItemRecord(p, 358);
    if (action == "LSP")
        return Opening(p) + Lng(367) + p.location + " : " + p.item + kCrLf + Lng(368) + p.name +
               Closing();
    return std::nullopt;
}

// Two words take their key from the language file; a record under other pieces
// than the literal ones does not read back.
std::string RecordKey(const std::string& action) {
    if (action == "rename") return Lng(305) + Lng(306) + Lng(307);
    if (action == "Manual Intervention Required") return Lng(314) + Lng(315) + Lng(316);
    return LogKey();
}

}  // namespace

TextFile WriteScanLogRecord(const std::string& action, const std::string& location,
                            const std::string& item, const std::string& name) {
    TextFile log = TextFile::ForAppend(LoggedTxtPath());
    const Pieces pieces = GatherPieces(location, item, name);
    if (auto plain = RecordText(action, pieces)) log.Print(Encrypt(*plain, RecordKey(action)));
    return log;
}

}  // namespace orvex
