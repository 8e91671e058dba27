// Win32System.cpp: the remaining operating-system services on the Win32 API.
#include "platform/win32/Win32System.h"

#include <windows.h>
// After windows.h, which they build on.
#include <shellapi.h>
#include <winnetwk.h>

#include <cstring>

#include "platform/win32/Win32Text.h"

namespace orvex::platform::win32 {
namespace {

// The identity buffers hold 255 characters, as the error log always asked for.
constexpr DWORD kNameBuffer = 255;
constexpr int kStandardDpi = 96;
// Bounds on what another program's window or a caller's request could make us allocate.
constexpr int kMaxTitle = 1 << 16;
constexpr std::size_t kMaxProfileValue = 1 << 20;

HANDLE AsHandle(MutexHandle handle) {
    return reinterpret_cast<HANDLE>(handle);
}

// The moment as a SYSTEMTIME with its day of the week; nullopt for a date Windows can't hold.
std::optional<SYSTEMTIME> SystemTimeOf(const LocalTime& t) {
    SYSTEMTIME in{};
    in.wYear = static_cast<WORD>(t.year);
    in.wMonth = static_cast<WORD>(t.month);
    in.wDay = static_cast<WORD>(t.day);
    in.wHour = static_cast<WORD>(t.hour);
    in.wMinute = static_cast<WORD>(t.minute);
    in.wSecond = static_cast<WORD>(t.second);
    FILETIME asFileTime;
    SYSTEMTIME out;
    if (t.year < 1601 || t.year > 30827 || !SystemTimeToFileTime(&in, &asFileTime) ||
        !FileTimeToSystemTime(&asFileTime, &out)) {
        return std::nullopt;
    }
    return out;
}

// For the formatting functions that return the size they need when given no buffer.
template <class Call>
std::string Formatted(Call call) {
    int needed = call(nullptr, 0);
    if (needed <= 0) return "";
    std::string text(static_cast<std::size_t>(needed), '\0');
    int written = call(text.data(), needed);
    if (written <= 0) return "";
    text.resize(static_cast<std::size_t>(written) - 1);
    return text;
}

std::string FolderText(UINT (*call)(LPSTR, UINT)) {
    std::string out;
    if (CallGrowing([&](char* b, DWORD n) { return call(b, n); }, out, kNameBuffer) != 0) {
        return "";
    }
    return out;
}

const char* OrNull(const std::string& text) {
    return text.empty() ? nullptr : text.c_str();
}

BOOL CALLBACK CollectWindow(HWND window, LPARAM into) {
    auto& windows = *reinterpret_cast<std::vector<TopWindow>*>(into);
    TopWindow found;
    found.handle = reinterpret_cast<std::uintptr_t>(window);
    int length = std::min(GetWindowTextLengthA(window), kMaxTitle);
    if (length > 0) {
        std::string title(static_cast<std::size_t>(length) + 1, '\0');
        int copied = GetWindowTextA(window, title.data(), length + 1);
        title.resize(static_cast<std::size_t>(std::max(copied, 0)));
        found.title = std::move(title);
    }
    DWORD pid = 0;
    GetWindowThreadProcessId(window, &pid);
    found.pid = pid;
    windows.push_back(std::move(found));
    return TRUE;
}

}  // namespace

std::uint32_t Win32System::tickCount() {
    return GetTickCount();
}

LocalTime Win32System::now() {
    SYSTEMTIME t;
    GetLocalTime(&t);
    return {t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond};
}

std::string Win32System::shortDateText(const LocalTime& t) {
    std::optional<SYSTEMTIME> moment = SystemTimeOf(t);
    if (!moment) return "";
    return Formatted([&](char* b, int n) {
        return GetDateFormatA(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &*moment, nullptr, b, n);
    });
}

std::string Win32System::longTimeText(const LocalTime& t) {
    std::optional<SYSTEMTIME> moment = SystemTimeOf(t);
    if (!moment) return "";
    return Formatted([&](char* b, int n) {
        return GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &*moment, nullptr, b, n);
    });
}

std::optional<std::string> Win32System::computerName() {
    char name[kNameBuffer + 1] = {};
    DWORD size = kNameBuffer;
    if (!GetComputerNameA(name, &size)) return std::nullopt;
    return CutAtNul(name, kNameBuffer);
}

std::optional<std::string> Win32System::userName() {
    char name[kNameBuffer + 1] = {};
    DWORD size = kNameBuffer;
    if (WNetGetUserA(nullptr, name, &size) != NO_ERROR) return std::nullopt;
    return CutAtNul(name, kNameBuffer);
}

std::string Win32System::windowsFolder() {
    return FolderText(GetWindowsDirectoryA);
}

std::string Win32System::systemFolder() {
    return FolderText(GetSystemDirectoryA);
}

std::optional<std::string> Win32System::environment(std::string_view name) {
    if (HasNul(name)) return std::nullopt;
    const std::string variable(name);
    std::string value;
    SetLastError(0);
    DWORD error = CallGrowing(
        [&](char* b, DWORD n) { return GetEnvironmentVariableA(variable.c_str(), b, n); }, value);
    if (error == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    if (error != 0) return std::string();  // set, but empty
    return value;
}

std::vector<std::string> Win32System::environmentStrings() {
    std::vector<std::string> strings;
    char* block = GetEnvironmentStringsA();
    if (block == nullptr) return strings;
    for (const char* entry = block; *entry != '\0'; entry += std::strlen(entry) + 1) {
        // "=C:=C:\..." entries hold each drive's current folder; they are no variables.
        if (*entry != '=') strings.emplace_back(entry);
    }
    FreeEnvironmentStringsA(block);
    return strings;
}

std::string Win32System::executablePath() {
    std::string path;
    CallGrowing([](char* b, DWORD n) { return GetModuleFileNameA(nullptr, b, n); }, path);
    return path;
}

MutexResult Win32System::createMutex(std::string_view name, bool initialOwner) {
    const std::string mutexName(name);
    HANDLE handle = CreateMutexA(nullptr, initialOwner ? TRUE : FALSE, OrNull(mutexName));
    const bool existed = GetLastError() == ERROR_ALREADY_EXISTS;
    return {reinterpret_cast<MutexHandle>(handle), handle != nullptr && existed};
}

MutexHandle Win32System::openMutex(std::string_view name) {
    return reinterpret_cast<MutexHandle>(OpenMutexA(SYNCHRONIZE, FALSE, std::string(name).c_str()));
}

bool Win32System::releaseMutex(MutexHandle handle) {
    return handle != 0 && ReleaseMutex(AsHandle(handle));
}

void Win32System::closeHandle(MutexHandle handle) {
    if (handle != 0) CloseHandle(AsHandle(handle));
}

bool Win32System::shellExecute(std::string_view verb, std::string_view file,
                               std::string_view parameters, int showCommand) {
    const std::string verbText(verb), fileText(file), parameterText(parameters);
    HINSTANCE result = ShellExecuteA(nullptr, OrNull(verbText), fileText.c_str(),
                                     OrNull(parameterText), nullptr, showCommand);
    // Values up to 32 are error codes.
    return reinterpret_cast<INT_PTR>(result) > 32;
}

bool Win32System::moveFileAtRestart(std::string_view from, std::string_view to,
                                    std::uint32_t flags) {
    if (HasNul(from) || HasNul(to)) return false;
    const std::string source(from), target(to);
    return MoveFileExA(source.c_str(), OrNull(target), flags) != 0;
}

std::string Win32System::lastErrorText() {
    constexpr DWORD kBuffer = 200;
    // Before the buffer's allocation, which could change it.
    const DWORD error = GetLastError();
    std::string text(kBuffer, ' ');
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM, nullptr, error, 0, text.data(),
                                        kBuffer, nullptr);
    text.resize(length);
    return text;
}

void Win32System::enableShutdownPrivilege() {
    HANDLE token = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &token);
    TOKEN_PRIVILEGES wanted{};
    wanted.PrivilegeCount = 1;
    LookupPrivilegeValueA("", "SeShutdownPrivilege", &wanted.Privileges[0].Luid);
    wanted.Privileges[0].Attributes = SE_PRIVILEGE_ENABLED;
    TOKEN_PRIVILEGES previous{};
    DWORD previousSize = 0;
    AdjustTokenPrivileges(token, FALSE, &wanted, sizeof wanted, &previous, &previousSize);
    if (token != nullptr) CloseHandle(token);
}

bool Win32System::exitWindows(std::uint32_t flags) {
    return ExitWindowsEx(flags, 0) != 0;
}

int Win32System::screenWidthPixels() {
    return GetSystemMetrics(SM_CXSCREEN);
}

int Win32System::screenHeightPixels() {
    return GetSystemMetrics(SM_CYSCREEN);
}

int Win32System::screenDpiY() {
    HDC desktop = GetDC(nullptr);
    if (desktop == nullptr) return kStandardDpi;
    int dpi = GetDeviceCaps(desktop, LOGPIXELSY);
    ReleaseDC(nullptr, desktop);
    return dpi > 0 ? dpi : kStandardDpi;
}

bool Win32System::screenReaderActive() {
    BOOL active = FALSE;
    return SystemParametersInfoA(SPI_GETSCREENREADER, 0, &active, 0) && active;
}

std::vector<TopWindow> Win32System::topLevelWindows() {
    std::vector<TopWindow> windows;
    EnumWindows(CollectWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

bool Win32System::postClose(std::uintptr_t window) {
    return PostMessageA(reinterpret_cast<HWND>(window), WM_CLOSE, 0, 0);
}

std::string Win32System::readProfileString(std::string_view section, std::string_view key,
                                           std::string_view defaultValue, std::size_t capacity,
                                           std::string_view file) {
    capacity = std::min(capacity, kMaxProfileValue);
    if (capacity == 0) return "";
    const std::string sectionText(section), keyText(key), defaultText(defaultValue), fileText(file);
    std::string value(capacity, '\0');
    DWORD copied =
        GetPrivateProfileStringA(sectionText.c_str(), keyText.c_str(), defaultText.c_str(),
                                 value.data(), static_cast<DWORD>(capacity), fileText.c_str());
    value.resize(std::min<std::size_t>(copied, capacity - 1));
    return value;
}

bool Win32System::writeProfileString(std::string_view section, std::string_view key,
                                     std::string_view value, std::string_view file) {
    const std::string sectionText(section), keyText(key), valueText(value), fileText(file);
    return WritePrivateProfileStringA(sectionText.c_str(), keyText.c_str(), valueText.c_str(),
                                      fileText.c_str());
}

}  // namespace orvex::platform::win32
