// Win32System_test.cpp: mutexes, identity, folders, dates, windows and INI files on the
// Win32 API under Wine.
#include "platform/win32/Win32System.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

namespace orvex::platform::win32 {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

std::string TempFile(const std::string& name) {
    char temp[MAX_PATH + 1];
    GetTempPathA(sizeof temp, temp);
    return std::string(temp) + name + std::to_string(GetCurrentProcessId());
}

TEST(Win32System, SecondCreateOfANamedMutexSeesTheFirst) {
    Win32System system;
    const std::string name = "OrvexSentryTest_" + std::to_string(GetCurrentProcessId());
    EXPECT_EQ(system.openMutex(name), 0u);

    MutexResult first = system.createMutex(name, true);
    ASSERT_NE(first.handle, 0u);
    EXPECT_FALSE(first.alreadyExisted);
    MutexResult second = system.createMutex(name, true);
    ASSERT_NE(second.handle, 0u);
    EXPECT_TRUE(second.alreadyExisted);
    MutexHandle opened = system.openMutex(name);
    EXPECT_NE(opened, 0u);

    // Owned once: the initial ownership of the second create is ignored.
    EXPECT_TRUE(system.releaseMutex(first.handle));
    EXPECT_FALSE(system.releaseMutex(second.handle));
    EXPECT_FALSE(system.releaseMutex(0));
    system.closeHandle(opened);
    system.closeHandle(second.handle);
    system.closeHandle(first.handle);
    EXPECT_EQ(system.openMutex(name), 0u);
}

TEST(Win32System, IdentityAndFoldersAreThoseOfTheMachine) {
    Win32System system;
    std::optional<std::string> computer = system.computerName();
    ASSERT_TRUE(computer.has_value());
    EXPECT_FALSE(computer->empty());
    EXPECT_EQ(computer->find('\0'), std::string::npos);
    std::optional<std::string> user = system.userName();
    ASSERT_TRUE(user.has_value());
    EXPECT_FALSE(user->empty());

    const std::string windows = system.windowsFolder();
    EXPECT_THAT(windows, StartsWith("C:\\"));
    EXPECT_THAT(system.systemFolder(), StartsWith(windows + "\\"));
    EXPECT_NE(GetFileAttributesA(system.systemFolder().c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_THAT(system.executablePath(), EndsWith("\\win32_tests.exe"));
}

TEST(Win32System, EnvironmentTellsEmptyFromMissing) {
    Win32System system;
    ASSERT_TRUE(SetEnvironmentVariableA("ORVEX_TEST_EMPTY", ""));
    const std::string longValue(5000, 'v');
    ASSERT_TRUE(SetEnvironmentVariableA("ORVEX_TEST_LONG", longValue.c_str()));
    EXPECT_EQ(system.environment("ORVEX_TEST_EMPTY"), std::optional<std::string>(""));
    EXPECT_EQ(system.environment("ORVEX_TEST_LONG"), std::optional<std::string>(longValue));
    EXPECT_EQ(system.environment("ORVEX_TEST_MISSING"), std::nullopt);
    EXPECT_TRUE(system.environment("WINDIR").has_value());
}

TEST(Win32System, DatesAndTimesUseTheUserLocale) {
    Win32System system;
    LocalTime now = system.now();
    EXPECT_GE(now.year, 2020);
    EXPECT_TRUE(now.month >= 1 && now.month <= 12);
    EXPECT_EQ(system.shortDateText({2026, 13, 1, 0, 0, 0}), "");
    EXPECT_EQ(system.longTimeText({2026, 2, 30, 0, 0, 0}), "");
    const std::uint32_t tick = system.tickCount();
    Sleep(20);
    EXPECT_GE(system.tickCount() - tick, 10u);

    if (GetUserDefaultLCID() != MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), 0)) {
        GTEST_SKIP() << "the exact texts are those of an en-US user";
    }
    EXPECT_EQ(system.shortDateText({2026, 11, 22, 19, 14, 5}), "11/22/2026");
    EXPECT_EQ(system.longTimeText({2026, 11, 22, 19, 14, 5}), "7:14:05 PM");
    EXPECT_EQ(system.shortDateText({1899, 12, 30, 0, 0, 0}), "12/30/1899");
}

TEST(Win32System, ProfileStringsAreCutToTheCapacity) {
    Win32System system;
    const std::string ini = TempFile("OrvexProfile") + ".ini";
    ASSERT_TRUE(system.writeProfileString("Language", "File", "English.lng", ini));
    EXPECT_EQ(system.readProfileString("Language", "File", "none", 255, ini), "English.lng");
    EXPECT_EQ(system.readProfileString("Language", "File", "none", 5, ini), "Engl");
    EXPECT_EQ(system.readProfileString("Language", "Other", "none", 255, ini), "none");
    EXPECT_EQ(system.readProfileString("Language", "File", "none", 0, ini), "");
    DeleteFileA(ini.c_str());
}

LRESULT CALLBACK CountCloses(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        SetWindowLongPtrA(window, GWLP_USERDATA, GetWindowLongPtrA(window, GWLP_USERDATA) + 1);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

TEST(Win32System, TopLevelWindowsCarryTitleAndProcessAndTakeAClose) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = CountCloses;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "OrvexSentryTestWindow";
    RegisterClassA(&windowClass);
    HWND window = CreateWindowExA(0, windowClass.lpszClassName, "Orvex Sentry test window",
                                  WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
                                  windowClass.hInstance, nullptr);
    if (window == nullptr) GTEST_SKIP() << "no window station for windows";

    Win32System system;
    std::vector<TopWindow> windows = system.topLevelWindows();
    auto found = std::find_if(windows.begin(), windows.end(), [&](const TopWindow& w) {
        return w.handle == reinterpret_cast<std::uintptr_t>(window);
    });
    ASSERT_NE(found, windows.end());
    EXPECT_EQ(found->title, "Orvex Sentry test window");
    EXPECT_EQ(found->pid, GetCurrentProcessId());

    EXPECT_TRUE(system.postClose(found->handle));
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
    EXPECT_EQ(GetWindowLongPtrA(window, GWLP_USERDATA), 1);
    DestroyWindow(window);
    EXPECT_FALSE(system.postClose(reinterpret_cast<std::uintptr_t>(window)));
}

TEST(Win32System, ScreenAndShellAnswerSensibly) {
    Win32System system;
    EXPECT_GT(system.screenWidthPixels(), 0);
    EXPECT_GT(system.screenHeightPixels(), 0);
    EXPECT_GE(system.screenDpiY(), 96);
    EXPECT_FALSE(system.screenReaderActive());
    EXPECT_FALSE(system.shellExecute("Open", "C:\\no such folder\\help.chm", "", SW_SHOWNORMAL));
}

}  // namespace
}  // namespace orvex::platform::win32
