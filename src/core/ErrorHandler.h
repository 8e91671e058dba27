// ErrorHandler.h: what happens after a failure in a procedure of consequence. The handler
// classifies the failure number into an outcome and writes an entry to the error log
// (DataFolder + "ovs.ph"); the procedure then retries, continues or leaves.
//
// A procedure names itself once and guards the statements that may continue:
//
//     Procedure proc("modLoader", "LoadStaticDat");
//     proc.Run([&] {
//         proc.Step([&] { file = TextFile::ForInput(path); });  // retried on outcome 1
//         ...                                                  // unguarded: a failure leaves
//     });
#pragma once

#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "platform/Failure.h"

namespace orvex {

enum class Outcome : std::int16_t {
    Resume = 1,         // retry the failing statement
    ResumeNext = 2,     // continue with the next statement
    ResumeAtLabel = 3,  // leave the procedure normally
    GotoZero = 4,       // turn handling off and leave
    ExitProject = 5,    // despite its name: continue with the next statement
};

// Per-call lists of failure numbers, each number between two "|" ("|53|70|").
struct ErrorLists {
    std::string resume{}, resumeNext{}, resumeAtLabel{}, gotoZero{}, exit{};
};

// The shared outcome of the last handled failure; 0 until one is handled.
extern Outcome ErrorOutcome;

// Classifies the failure, writes the log entry and returns (and stores) the outcome.
Outcome ErrorHandler(int number, const std::string& description, int line,
                     const std::string& module, const std::string& procedure,
                     const ErrorLists& lists = {});

// Writes one entry over the start of the error log. A log that cannot be written fails
// into the handler again; that recursion is bounded and the bound counts as failure 28.
void WriteErrorToLog(const std::string& message, Outcome outcome);

// The log's name for an outcome ("Resume", ..., "Exit Project"); empty for any other value.
std::string OutcomeName(Outcome outcome);

// The outcome for a failure number: the caller's lists first (the last list holding
// "|number|" wins), then the fixed tables; anything unknown or out of range is 5.
Outcome ClassifyFailure(int number, const ErrorLists& lists = {});

// "major.minor.revision" as the log shows it, the revision with at least two digits.
std::string ErrorLogVersionText(int major, int minor, int revision);

// Runs one statement of a routine that passes over its failures unlogged: a failing
// statement is skipped and the next one runs.
template <class F>
void ResumeNext(F&& statement) {
    try {
        statement();
    } catch (const Failure&) {
    } catch (const std::bad_alloc&) {
    }
}

// Thrown to leave a procedure; Procedure::Run catches it.
struct LeaveProcedure {};

class Procedure {
  public:
    // A retry loop that keeps failing ends after this many attempts, and the statement
    // then counts as passed over, so that the program goes on running: a missing file
    // must not hang it.
    static constexpr int kRetryLimit = 16;

    Procedure(std::string module, std::string name, ErrorLists lists = {})
        : module_(std::move(module)), name_(std::move(name)), lists_(std::move(lists)) {}

    // Runs one statement under the handler: true when it completed, false when it failed
    // and the outcome says to go on with the next statement.
    template <class F>
    bool Step(F&& statement, int line = 0) {
        for (int attempt = 1;; ++attempt) {
            Outcome outcome{};
            try {
                statement();
                return true;
            } catch (const Failure& f) {
                outcome = Handle(f.number(), f.what(), line);
            } catch (const std::bad_alloc&) {
                outcome = Handle(failure::kOutOfMemory, StandardDescription(7), line);
            }
            if (!RetryAfter(outcome, attempt)) return false;
        }
    }

    // What Step does for a statement that is known to fail with this number, without
    // throwing: for hot loops over foreign data, where an exception per byte would cost
    // more than the work. Always false.
    bool Fail(int number, int line = 0) {
        for (int attempt = 1;; ++attempt)
            if (!RetryAfter(Handle(number, StandardDescription(number), line), attempt))
                return false;
    }

    // Runs the body of the procedure. A failure outside any Step is logged and leaves the
    // procedure, since there is no guarded statement to retry or to continue after.
    template <class F>
    void Run(F&& body) {
        try {
            body();
        } catch (const LeaveProcedure&) {
        } catch (const Failure& f) {
            Handle(f.number(), f.what(), 0);
        } catch (const std::bad_alloc&) {
            Handle(failure::kOutOfMemory, StandardDescription(7), 0);
        }
    }

    const std::string& module() const { return module_; }
    const std::string& name() const { return name_; }

  private:
    // True to run the statement again; false to go on with the next one; leaves the
    // procedure for the other outcomes.
    static bool RetryAfter(Outcome outcome, int attempt) {
        if (outcome == Outcome::Resume) return attempt < kRetryLimit;
        if (outcome == Outcome::ResumeNext || outcome == Outcome::ExitProject) return false;
        throw LeaveProcedure{};
    }

    Outcome Handle(int number, const std::string& description, int line) {
        return ErrorHandler(number, description, line, module_, name_, lists_);
    }

    std::string module_, name_;
    ErrorLists lists_;
};

}  // namespace orvex
