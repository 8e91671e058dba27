// Win32System_test.cpp: what only the Win32 system back-end shows: real folders and real
// top-level windows that take a close.
#include "platform/win32/Win32System.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

namespace orvex::platform::win32 {
namespace {

LRESULT CALLBACK CountCloses(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        SetWindowLongPtrA(window, GWLP_USERDATA, GetWindowLongPtrA(window, GWLP_USERDATA) + 1);
        return 0;
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

TEST(Win32System, TheSystemFolderIsThereAndTopLevelWindowsTakeAClose) {
    Win32System system;
    EXPECT_NE(GetFileAttributesA(system.systemFolder().c_str()), INVALID_FILE_ATTRIBUTES);
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = CountCloses;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "OrvexSentryTestWindow";
    RegisterClassA(&windowClass);
    HWND window = CreateWindowExA(0, windowClass.lpszClassName, "Orvex Sentry test window",
                                  WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr, nullptr,
                                  windowClass.hInstance, nullptr);
    if (window == nullptr) GTEST_SKIP() << "no window station for windows";
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

}  // namespace
}  // namespace orvex::platform::win32
