// ComUnregister_test.cpp: RegSvr32 on real libraries built for the tests: the entry that
// ran, the library freed after, and a hung entry that ends the calling thread of a child.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <memory>
#include <optional>
#include <string>

#include "SleepingChild.h"
#include "app/ProcessState.h"
#include "platform/Platform.h"
#include "removal/ComUnregister.h"

namespace orvex {
namespace {

using testing::Exists;
using testing::ThisExecutable;

constexpr const char* kChildArgument = "--orvex-unregister-child ";
constexpr DWORD kChildCarriedOn = 5;
constexpr DWORD kHungEntryResult = 77;

void Touch(const std::string& path) {
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
}

// A child started with kChildArgument and a library's path unregisters it, then leaves a
// ".after" mark beside it and ends with kChildCarriedOn, if its thread is still there.
[[maybe_unused]] const bool kUnregisterChild = [] {
    const char* found = std::strstr(GetCommandLineA(), kChildArgument);
    if (found == nullptr) return false;
    const std::string library = found + std::strlen(kChildArgument);
    auto host = platform::MakeHostPlatform();
    platform::ScopedPlatform installed(host->view());
    RegSvr32(library, true);
    Touch(library + ".after");
    ExitProcess(kChildCarriedOn);
}();

class ComUnregisterTest : public ::testing::Test {
  protected:
    ComUnregisterTest() {
        ResetProcessState();  // which leaves no platform installed
        installed_.emplace(host_->view());
        work_ = testing::TempFolder() + "orvexcomponents\\";
        CreateDirectoryA(work_.c_str(), nullptr);
    }
    ~ComUnregisterTest() override {
        installed_.reset();
        ResetProcessState();
    }

    // A fresh copy of a component built beside this program in the work folder, without
    // marks; a name of another kind is made there as a text file.
    std::string Copy(const std::string& name) {
        const std::string built = ThisExecutable().substr(0, ThisExecutable().rfind('\\') + 1);
        const std::string copy = work_ + name;
        for (const char* mark : {".loaded", ".registered", ".unregistered", ".after"})
            DeleteFileA((copy + mark).c_str());
        if (name.ends_with(".dll"))
            EXPECT_TRUE(CopyFileA((built + name).c_str(), copy.c_str(), FALSE)) << name;
        else
            Touch(copy);
        return copy;
    }

  private:
    std::unique_ptr<platform::OwnedPlatform> host_ = platform::MakeHostPlatform();
    std::optional<platform::ScopedPlatform> installed_;
    std::string work_;
};

TEST_F(ComUnregisterTest, TheEntryRunsAndTheLibraryIsFreed) {
    const struct {
        const char* file;
        bool unregister;
        bool result;
        const char* mark;  // left by the entry that ran, if any
    } cases[] = {
        {"component_entries.dll", true, true, ".unregistered"},
        {"component_entries.dll", false, true, ".registered"},
        {"component_no_entries.dll", true, false, nullptr},
        {"readme.txt", true, false, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + (c.unregister ? " unregister" : " register"));
        const std::string path = Copy(c.file);
        EXPECT_EQ(RegSvr32(path, c.unregister), c.result);
        for (const char* mark : {".registered", ".unregistered"})
            EXPECT_EQ(Exists(path + mark), c.mark != nullptr && std::strcmp(mark, c.mark) == 0);
        EXPECT_EQ(GetModuleHandleA(path.c_str()), nullptr);
        EXPECT_TRUE(DeleteFileA(path.c_str()));
    }
}

TEST_F(ComUnregisterTest, AHungEntryEndsTheCallingThreadAndNothingAfterRuns) {
    const std::string path = Copy("component_hangs.dll");
    const std::string program = ThisExecutable();
    const long code = testing::RunAndWait("\"" + program + "\" " + kChildArgument + path);
    EXPECT_TRUE(Exists(path + ".unregistered"));
    EXPECT_FALSE(Exists(path + ".after"));
    // The hung thread was the last one left, so its result became the process's.
    EXPECT_EQ(code, static_cast<long>(kHungEntryResult));
}

}  // namespace
}  // namespace orvex
