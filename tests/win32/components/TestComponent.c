/* TestComponent.c: a component for the registration tests. Each step leaves an empty file
 * beside the library, named after it with a suffix: ".loaded" when it is loaded, and
 * ".registered" or ".unregistered" when an entry runs. Built three ways: with both entries,
 * without any (COMPONENT_NO_ENTRIES), and with an unregister entry that blocks for twelve
 * seconds and returns 77 (COMPONENT_HANGS). */
#include <windows.h>

#include <string.h>

static HMODULE self;

static void Mark(const char* suffix) {
    char path[MAX_PATH + 32] = {0};
    DWORD length = GetModuleFileNameA(self, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return;
    strcat(path, suffix);
    HANDLE file = CreateFileA(path, GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
    (void)reserved;
    if (reason == DLL_PROCESS_ATTACH) {
        self = instance;
        Mark(".loaded");
    }
    return TRUE;
}

#ifndef COMPONENT_NO_ENTRIES
__declspec(dllexport) HRESULT WINAPI DllRegisterServer(void) {
    Mark(".registered");
    return S_OK;
}

__declspec(dllexport) HRESULT WINAPI DllUnregisterServer(void) {
    Mark(".unregistered");
#ifdef COMPONENT_HANGS
    Sleep(12000);
    return 77;
#else
    return S_OK;
#endif
}
#endif
