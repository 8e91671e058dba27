// Failure.h: the failure type of the whole engine. A failure carries one of the classic
// run-time failure numbers, because the error handler's tables are written in them.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace orvex {

// Classic failure numbers the engine raises itself.
namespace failure {
inline constexpr int kInvalidCall = 5;
inline constexpr int kOverflow = 6;
inline constexpr int kOutOfMemory = 7;
inline constexpr int kSubscript = 9;
inline constexpr int kDivisionByZero = 11;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kOutOfStack = 28;
inline constexpr int kBadFileName = 52;
inline constexpr int kFileNotFound = 53;
inline constexpr int kBadFileMode = 54;
inline constexpr int kFileAlreadyOpen = 55;
inline constexpr int kDeviceIo = 57;
inline constexpr int kFileExists = 58;
inline constexpr int kDiskFull = 61;
inline constexpr int kPastEnd = 62;
inline constexpr int kTooManyFiles = 67;
inline constexpr int kDeviceUnavailable = 68;
inline constexpr int kPermissionDenied = 70;
inline constexpr int kDiskNotReady = 71;
inline constexpr int kPathFileAccess = 75;
inline constexpr int kPathNotFound = 76;
inline constexpr int kObjectNotSet = 91;
inline constexpr int kInvalidNull = 94;
inline constexpr int kNotAnArray = 343;
}  // namespace failure

// The standard description of a failure number, as the classic run-time gives it;
// "Application-defined or object-defined error" for numbers it has no text for.
std::string StandardDescription(int number);

class Failure : public std::runtime_error {
  public:
    explicit Failure(int number);
    Failure(int number, std::string description);
    int number() const { return number_; }

  private:
    int number_;
};

[[noreturn]] void Raise(int number);

// Maps an errno value of the C library to the classic failure number; `isFolder` tells a
// missing folder (76) from a missing file (53).
int FailureFromErrno(int err, bool isFolder = false);

}  // namespace orvex
