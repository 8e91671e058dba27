// Failure.cpp: classic failure numbers, their standard texts and the errno mapping.
#include "platform/Failure.h"

#include <cerrno>
#include <map>

namespace orvex {

std::string StandardDescription(int number) {
    static const std::map<int, const char*> texts = {
        {3, "Return without GoSub"},
        {5, "Invalid procedure call or argument"},
        {6, "Overflow"},
        {7, "Out of memory"},
        {9, "Subscript out of range"},
        {10, "This array is fixed or temporarily locked"},
        {11, "Division by zero"},
        {13, "Type mismatch"},
        {14, "Out of string space"},
        {16, "Expression too complex"},
        {17, "Can't perform requested operation"},
        {18, "User interrupt occurred"},
        {20, "Resume without error"},
        {28, "Out of stack space"},
        {35, "Sub or Function not defined"},
        {47, "Too many DLL application clients"},
        {48, "Error in loading DLL"},
        {49, "Bad DLL calling convention"},
        {51, "Internal error"},
        {52, "Bad file name or number"},
        {53, "File not found"},
        {54, "Bad file mode"},
        {55, "File already open"},
        {57, "Device I/O error"},
        {58, "File already exists"},
        {59, "Bad record length"},
        {61, "Disk full"},
        {62, "Input past end of file"},
        {63, "Bad record number"},
        {67, "Too many files"},
        {68, "Device unavailable"},
        {70, "Permission denied"},
        {71, "Disk not ready"},
        {74, "Can't rename with different drive"},
        {75, "Path/File access error"},
        {76, "Path not found"},
        {91, "Object variable or With block variable not set"},
        {92, "For loop not initialized"},
        {93, "Invalid pattern string"},
        {94, "Invalid use of Null"},
        {97, "Can not call friend function on object which is not an instance of defining class"},
        {98,
         "A property or method call cannot include a reference to a private object, "
         "either as an argument or as a return value"},
        {298, "System DLL could not be loaded"},
        {320, "Can't use character device names in specified file names"},
        {321, "Invalid file format"},
        {322, "Can't create necessary temporary file"},
        {325, "Invalid format in resource file"},
        {335, "Could not access system registry"},
        {343, "Object not an array"},
        {396, "Property cannot be set within a page"},
        {482, "Printer error"},
        {735, "Can't save file to TEMP"},
    };
    auto it = texts.find(number);
    return it != texts.end() ? it->second : "Application-defined or object-defined error";
}

Failure::Failure(int number) : Failure(number, StandardDescription(number)) {}

Failure::Failure(int number, std::string description)
    : std::runtime_error(std::move(description)), number_(number) {}

void Raise(int number) {
    throw Failure(number);
}

int FailureFromErrno(int err, bool isFolder) {
    switch (err) {
        case ENOENT:
            return isFolder ? failure::kPathNotFound : failure::kFileNotFound;
        case ENOTDIR:
            return failure::kPathNotFound;
        case EACCES:
        case EPERM:
        case EROFS:
            return failure::kPathFileAccess;
        case EBUSY:
        case ETXTBSY:
            return failure::kPermissionDenied;
        case EEXIST:
            return failure::kFileExists;
        case ENOSPC:
            return failure::kDiskFull;
        case EMFILE:
        case ENFILE:
            return failure::kTooManyFiles;
        case ENOMEM:
            return failure::kOutOfMemory;
        case EIO:
            return failure::kDeviceIo;
        case ENAMETOOLONG:
        case EINVAL:
            return failure::kBadFileName;
        case ENODEV:
        case ENXIO:
            return failure::kDeviceUnavailable;
        default:
            return failure::kDeviceIo;
    }
}

}  // namespace orvex
