// SampleAgent.cpp: a harmless stand-in for a planted program: it sleeps for the number of
// seconds given as its argument (60 without one, at most an hour) and exits.
#include <chrono>
#include <cstdlib>
#include <thread>

namespace {

constexpr long kDefaultSeconds = 60;
constexpr long kMaxSeconds = 3600;

long SecondsToSleep(int argc, char** argv) {
    if (argc < 2) return kDefaultSeconds;
    char* end = nullptr;
    const long seconds = std::strtol(argv[1], &end, 10);
    if (end == argv[1] || *end != '\0' || seconds < 0) return kDefaultSeconds;
    return seconds > kMaxSeconds ? kMaxSeconds : seconds;
}

}  // namespace

int main(int argc, char** argv) {
    std::this_thread::sleep_for(std::chrono::seconds(SecondsToSleep(argc, argv)));
    return 0;
}
