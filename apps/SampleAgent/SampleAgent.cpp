// SampleAgent.cpp: a harmless stand-in for a planted program: it sleeps for the number of
// seconds given as its first argument (60 without one, at most an hour) and exits. Given a
// file as its second argument, it holds that file open without sharing while it sleeps, as
// spyware holds its own files, so that nothing else can read, write or delete it.
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

constexpr long kDefaultSeconds = 60;
constexpr long kMaxSeconds = 3600;
constexpr DWORD kNoSharing = 0;

long SecondsToSleep(int argc, char** argv) {
    if (argc < 2) return kDefaultSeconds;
    char* end = nullptr;
    const long seconds = std::strtol(argv[1], &end, 10);
    if (end == argv[1] || *end != '\0' || seconds < 0) return kDefaultSeconds;
    return seconds > kMaxSeconds ? kMaxSeconds : seconds;
}

}  // namespace

int main(int argc, char** argv) {
    HANDLE held = INVALID_HANDLE_VALUE;
    if (argc >= 3) {
        held = CreateFileA(argv[2], GENERIC_READ | GENERIC_WRITE, kNoSharing, nullptr,
                           OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (held == INVALID_HANDLE_VALUE) {
            std::fprintf(stderr, "SampleAgent: cannot open %s (error %lu)\n", argv[2],
                         GetLastError());
            return 1;
        }
    }
    std::this_thread::sleep_for(std::chrono::seconds(SecondsToSleep(argc, argv)));
    if (held != INVALID_HANDLE_VALUE) CloseHandle(held);
    return 0;
}
