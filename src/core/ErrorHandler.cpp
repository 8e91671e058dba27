// ErrorHandler.cpp: failure classification and the error log "ovs.ph".
#include "core/ErrorHandler.h"

#include <array>
#include <new>
#include <optional>
#include <string_view>

#include "core/AppState.h"
#include "core/DateText.h"
#include "core/TextFile.h"
#include "platform/Platform.h"

namespace orvex {

Outcome ErrorOutcome{};

namespace {

// The lists give outcomes as numbers; any number outside 1..5 counts as Exit Project.
constexpr int kUnclassified = 99;
constexpr std::string_view kCrLf = "\r\n";
constexpr std::string_view kModule = "modErrorHandler";
constexpr std::string_view kLogName = "ovs.ph";

// An unwritable log fails into the handler, whose entry fails again; the original runtime
// ran out of stack there. This many nested writes stand for that.
constexpr int kLogDepthLimit = 8;
int logDepth = 0;

struct TableRow {
    std::string_view numbers;
    int outcome;
};

// Read top to bottom; a later row that holds the number replaces an earlier one.
constexpr std::array<TableRow, 10> kFixedTable = {{
    {"|18|58|", 1},
    {"|3|5|6|9|10|11|13|14|17|35|49|59|63|335|", 2},
    {"|20|", 4},
    {"|7|16|28|47|48|51|67|70|92|93|94|", 5},
    // File failures: the statement runs again.
    {"|52|53|54|55|57|61|62|64|68|71|74|75|76|298|320|321|322|325|735|31036|31037|", 1},
    {"|3004|3024|3044|", 1},
    {"|3021|", 2},
    {"|3022|3058|3315|", 4},
    // Printing failures: 0 is out of range and ends up as 5.
    {"|396|482|483|484|486|", 0},
    // Object failures.
    {"|91|97|98|", 5},
}};

bool Holds(std::string_view list, const std::string& key) {
    return list.find(key) != std::string_view::npos;
}

std::string Key(int number) {
    std::string key(1, '|');
    key += std::to_string(number);
    key += '|';
    return key;
}

int FromCallerLists(const std::string& key, const ErrorLists& lists) {
    const std::array<const std::string*, 5> inOrder = {
        &lists.resume, &lists.resumeNext, &lists.resumeAtLabel, &lists.gotoZero, &lists.exit};
    int outcome = kUnclassified;
    for (std::size_t i = 0; i < inOrder.size(); ++i)
        if (Holds(*inOrder[i], key)) outcome = static_cast<int>(i + 1);
    return outcome;
}

int FromFixedTable(const std::string& key) {
    int outcome = kUnclassified;
    for (const TableRow& row : kFixedTable)
        if (Holds(row.numbers, key)) outcome = row.outcome;
    return outcome;
}

std::string MessageText(int number, const std::string& description, int line,
                        const std::string& module, const std::string& procedure) {
    std::string text;
    text.reserve(96 + description.size() + module.size() + procedure.size());
    text.append("Error [ ").append(std::to_string(number)).append(" ]:  ").append(description);
    text.append("\r\n\r\nLocation:  Procedure ( ").append(procedure);
    text.append(" ) - Module ( ").append(module).append(" )");
    if (line != 0) text.append("\r\n\r\nLine number:  ").append(std::to_string(line));
    text.append(kCrLf);
    return text;
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

// The log's lines stand closer together than the message's: double line ends go, twice
// over, and the last line end goes so that the outcome follows on the same line.
std::string CompactMessage(std::string message) {
    constexpr std::string_view doubled = "\r\n\r\n";
    ReplaceAll(message, doubled, kCrLf);
    ReplaceAll(message, doubled, kCrLf);
    if (message.ends_with(kCrLf)) message.resize(message.size() - kCrLf.size());
    return message;
}

std::string CutAtNul(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

std::string ComputerNameText() {
    auto name = platform::Sys().computerName();
    return name ? CutAtNul(*name) : "(Unknown)";
}

std::string UserNameText() {
    auto name = platform::Sys().userName();
    return name ? CutAtNul(*name) : "";
}

std::string EntryText(const std::string& message, Outcome outcome) {
    constexpr std::string_view kBlanks5 = "     ";
    std::string entry = CompactMessage(message);
    entry.reserve(entry.size() + 256);
    entry.append(20, ' ').append("Outcome: ").append(OutcomeName(outcome)).append(kCrLf);
    entry.append("Date-Time: ").append(Format(Now(), "mm/dd/yy hh:nn:ss")).append(kBlanks5);
    entry.append("Workstation: ").append(ComputerNameText()).append(kBlanks5);
    entry.append("User: ").append(UserNameText());
    entry.append("\r\n\r\nVersion: ")
        .append(
            ErrorLogVersionText(ORVEX_VERSION_MAJOR, ORVEX_VERSION_MINOR, ORVEX_VERSION_REVISION))
        .append(", Definition Date: ")
        .append(App().DefinitionDate);
    entry.append("\r\n\r\n---------------------------------------");
    return entry;
}

class LogDepthGuard {
  public:
    LogDepthGuard() { ++logDepth; }
    ~LogDepthGuard() { --logDepth; }
    LogDepthGuard(const LogDepthGuard&) = delete;
    LogDepthGuard& operator=(const LogDepthGuard&) = delete;
};

void ReportLogFailure(int number, const std::string& description) {
    ErrorHandler(number, description, 0, std::string(kModule), "WriteErrorToLog");
}

}  // namespace

std::string OutcomeName(Outcome outcome) {
    switch (outcome) {
        case Outcome::Resume:
            return "Resume";
        case Outcome::ResumeNext:
            return "Resume Next";
        case Outcome::ResumeAtLabel:
            return "Resume at label";
        case Outcome::GotoZero:
            return "On Error GoTo 0";
        case Outcome::ExitProject:
            return "Exit Project";
    }
    return "";
}

Outcome ClassifyFailure(int number, const ErrorLists& lists) {
    const std::string key = Key(number);
    int outcome = FromCallerLists(key, lists);
    if (outcome == kUnclassified) outcome = FromFixedTable(key);
    if (outcome < 1 || outcome > 5) return Outcome::ExitProject;
    return static_cast<Outcome>(outcome);
}

std::string ErrorLogVersionText(int major, int minor, int revision) {
    std::string rev = std::to_string(revision);
    if (rev.size() < 2) rev = std::string(2 - rev.size(), '0') + rev;
    return std::to_string(major) + "." + std::to_string(minor) + "." + rev;
}

Outcome ErrorHandler(int number, const std::string& description, int line,
                     const std::string& module, const std::string& procedure,
                     const ErrorLists& lists) {
    Outcome outcome = Outcome::ExitProject;
    // The handler never fails itself: whatever goes wrong here is passed over.
    try {
        outcome = ClassifyFailure(number, lists);
        if (logDepth >= kLogDepthLimit) {
            // Out of stack space (28) in the original: classified, never written.
            outcome = ClassifyFailure(failure::kOutOfStack);
        } else {
            WriteErrorToLog(MessageText(number, description, line, module, procedure), outcome);
        }
    } catch (...) {
    }
    // A failure while logging ran its own handler; the caller acts on its own outcome.
    ErrorOutcome = outcome;
    return outcome;
}

void WriteErrorToLog(const std::string& message, Outcome outcome) {
    LogDepthGuard depth;
    std::optional<TextFile> log;
    try {
        log.emplace(TextFile::ForAppend(App().DataFolder + std::string(kLogName)));
        log->Seek(1);  // over the start of the file: the log never grows past its longest entry
        log->Print(EntryText(message, outcome));
        log->Close();
        return;
    } catch (const Failure& f) {
        ReportLogFailure(f.number(), f.what());
    } catch (const std::bad_alloc&) {
        ReportLogFailure(failure::kOutOfMemory, StandardDescription(failure::kOutOfMemory));
    }
    try {
        if (log) log->Close();
    } catch (...) {
    }
}

}  // namespace orvex
