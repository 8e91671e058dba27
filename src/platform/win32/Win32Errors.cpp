// Win32Errors.cpp: Win32 error codes mapped onto the classic failure numbers the error
// handler's tables are written in.
#include "platform/win32/Win32Errors.h"

#include <windows.h>

#include "platform/Failure.h"

namespace orvex::platform::win32 {

int FailureFromWin32(std::uint32_t error, bool isFolder) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
            return isFolder ? failure::kPathNotFound : failure::kFileNotFound;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_BAD_NETPATH:
        case ERROR_BAD_NET_NAME:
        case ERROR_DIRECTORY:
            return failure::kPathNotFound;
        case ERROR_TOO_MANY_OPEN_FILES:
            return failure::kTooManyFiles;
        case ERROR_ACCESS_DENIED:
        case ERROR_CURRENT_DIRECTORY:
        case ERROR_CANNOT_MAKE:
        case ERROR_DIR_NOT_EMPTY:
            return failure::kPathFileAccess;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_WRITE_PROTECT:
        case ERROR_DRIVE_LOCKED:
        case ERROR_BUSY:
        case ERROR_USER_MAPPED_FILE:
            return failure::kPermissionDenied;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
        case ERROR_NO_SYSTEM_RESOURCES:
            return failure::kOutOfMemory;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return failure::kDiskFull;
        case ERROR_HANDLE_EOF:
            return failure::kPastEnd;
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
            return failure::kFileExists;
        case ERROR_NOT_READY:
            return failure::kDiskNotReady;
        case ERROR_INVALID_DRIVE:
        case ERROR_DEV_NOT_EXIST:
        case ERROR_DEVICE_NOT_CONNECTED:
            return failure::kDeviceUnavailable;
        case ERROR_NOT_SAME_DEVICE:
            return 74;  // "Can't rename with different drive"
        case ERROR_CRC:
        case ERROR_SEEK:
        case ERROR_SECTOR_NOT_FOUND:
        case ERROR_WRITE_FAULT:
        case ERROR_READ_FAULT:
        case ERROR_GEN_FAILURE:
        case ERROR_IO_DEVICE:
            return failure::kDeviceIo;
        case ERROR_INVALID_HANDLE:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_BUFFER_OVERFLOW:
            return failure::kBadFileName;
        case ERROR_INVALID_PARAMETER:
        case ERROR_NOT_SUPPORTED:
            return failure::kInvalidCall;
        default:
            // What the classic runtime reports for file errors it has no number for.
            return failure::kPathFileAccess;
    }
}

void RaiseLastError(bool isFolder) {
    Raise(FailureFromWin32(GetLastError(), isFolder));
}

}  // namespace orvex::platform::win32
