// ProcessesContract.h: what every process back-end does as the PSAPI and Toolhelp calls do.
// The maker gives processes(), selfImage() (this process's image path), child() (a harmless
// program to start: path, arguments and the image path it lists under) and ended(pid) (waits
// a while for a terminated child to be gone).
#pragma once

#include <cctype>
#include <chrono>
#include <climits>
#include <set>
#include <string>
#include <thread>

#include "platform/Processes.h"
#include "platform/contract/Contract.h"

namespace orvex::testing {

struct ChildProgram {
    std::string path, arguments, image;
};

inline std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

template <class Maker>
class ProcessesContract : public ContractTest<Maker> {
  protected:
    std::set<std::uint32_t> running(const std::string& image) {
        std::set<std::uint32_t> ids;
        for (const auto& entry : api.listWithPaths())
            if (Lower(entry.imagePath) == Lower(image)) ids.insert(entry.pid);
        return ids;
    }

    platform::ProcessApi& api = this->maker.processes();
};

TYPED_TEST_SUITE_P(ProcessesContract);

TYPED_TEST_P(ProcessesContract, TheVersionIsNtAndBothListsHoldThisProcess) {
    auto& api = this->api;
    const auto version = api.osVersion();
    EXPECT_TRUE(version && version->platformId == 2 && version->major >= 5);
    EXPECT_TRUE(this->running(this->maker.selfImage()).count(api.currentProcessId()));
    const auto leaf = [](const std::string& path) {
        return Lower(path.substr(path.rfind('\\') + 1));
    };
    bool selfNamed = false;
    for (const std::string& name : api.listImageNames()) {
        EXPECT_TRUE(!name.empty() && name.find('\0') == std::string::npos) << name;
        selfNamed |= leaf(name) == leaf(this->maker.selfImage());
    }
    EXPECT_TRUE(selfNamed);
}

TYPED_TEST_P(ProcessesContract, AStartedProgramIsListedAndEndedByTerminate) {
    const ChildProgram child = this->maker.child();
    const auto before = this->running(child.image);
    ASSERT_TRUE(this->api.start(child.path, child.arguments, true));
    std::set<std::uint32_t> started;
    for (int wait = 0; wait < 200 && started.empty(); ++wait) {
        for (std::uint32_t pid : this->running(child.image))
            if (!before.count(pid)) started.insert(pid);
        if (started.empty()) std::this_thread::sleep_for(std::chrono::milliseconds(25));
    }
    ASSERT_EQ(started.size(), 1u);
    EXPECT_TRUE(this->api.terminate(*started.begin()));
    EXPECT_TRUE(this->maker.ended(*started.begin()));
}

TYPED_TEST_P(ProcessesContract, NothingToEndOrStartFails) {
    for (std::uint32_t pid :
         {0u, 0xFFFFFFF0u, UINT32_MAX, static_cast<std::uint32_t>(INT_MAX) + 1u})
        EXPECT_FALSE(this->api.terminate(pid)) << pid;
    EXPECT_FALSE(this->api.start("C:\\no such folder\\none.exe", "", true));
}

REGISTER_TYPED_TEST_SUITE_P(ProcessesContract, TheVersionIsNtAndBothListsHoldThisProcess,
                            AStartedProgramIsListedAndEndedByTerminate, NothingToEndOrStartFails);

}  // namespace orvex::testing
