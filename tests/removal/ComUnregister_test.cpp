// ComUnregister_test.cpp: what RegSvr32 and UnRegServer make of scripted components: which
// entry ran, what stays loaded, and the thread that a hung entry takes with it.
#include "removal/ComUnregister.h"

#include "support/MemoryFixture.h"

namespace orvex {
namespace {

using platform::memory::MemoryComponent;
using platform::memory::ThreadExited;
using Strings = std::vector<std::string>;

const std::string kDll = "C:\\Spy\\toolbar.dll";
const Strings kBothEntries = {"DllRegisterServer", "DllUnregisterServer"};

struct RegCase {
    const char* name;
    std::optional<MemoryComponent> component;  // none: a plain file
    std::uint32_t attributes;
    bool noThread, unregister, result;
    const char* ran;  // the entry that ran, if one did
    bool keptLoaded;
};

void PrintTo(const RegCase& c, std::ostream* out) {
    *out << c.name;
}

class RegSvr32Case : public testing::MemoryPlatformTest,
                     public ::testing::WithParamInterface<RegCase> {};

TEST_P(RegSvr32Case, RunsTheEntryAndFreesTheLibraryOnlyWhenItFinished) {
    const RegCase& c = GetParam();
    files.addFile(kDll, "MZ", c.attributes);
    if (c.component) processes.addComponent(kDll, *c.component);
    processes.failThreadStart(c.noThread);
    EXPECT_EQ(RegSvr32(kDll, c.unregister), c.result);
    EXPECT_EQ(processes.entriesRun(), *c.ran ? Strings{kDll + "|" + c.ran} : Strings{});
    EXPECT_EQ(processes.loadedLibraries(), c.keptLoaded ? Strings{kDll} : Strings{});
    EXPECT_EQ(processes.openThreads(), 0u);
}

constexpr std::uint32_t kPlain = platform::attr::kArchive;
const MemoryComponent kBoth{kBothEntries};
const char* const kUnreg = "DllUnregisterServer";

INSTANTIATE_TEST_SUITE_P(
    Components, RegSvr32Case,
    ::testing::Values(
        RegCase{"Unregisters", kBoth, kPlain, false, true, true, kUnreg, false},
        RegCase{"Registers", kBoth, kPlain, false, false, true, "DllRegisterServer", false},
        RegCase{"ReadOnlyIsFound", kBoth, platform::attr::kReadOnly, false, true, true, kUnreg,
                false},
        RegCase{"HiddenIsNotFound", kBoth, platform::attr::kHidden, false, true, false, "", false},
        RegCase{"SystemIsNotFound", kBoth, platform::attr::kSystem, false, true, false, "", false},
        RegCase{"NotALibrary", std::nullopt, kPlain, false, true, false, "", false},
        RegCase{"NoSuchEntry", MemoryComponent{{"DllRegisterServer"}}, kPlain, false, true, false,
                "", false},
        RegCase{"NoThreadKeepsItLoaded", kBoth, kPlain, true, true, false, "", true},
        RegCase{"JustInTime", MemoryComponent{kBothEntries, 9900, 1}, kPlain, false, true, true,
                kUnreg, false}),
    [](const auto& info) { return std::string(info.param.name); });

class ComUnregisterTest : public testing::MemoryPlatformTest {};

TEST_F(ComUnregisterTest, AnEntryStillRunningAfterTenSecondsEndsTheCallingThread) {
    files.addFile(kDll, "MZ");
    processes.addComponent(kDll, MemoryComponent{kBothEntries, 10000, 1});
    constexpr std::uint32_t kStillActive = 259;
    try {
        RegSvr32(kDll, true);
        ADD_FAILURE() << "RegSvr32 returned";
    } catch (const ThreadExited& exited) {
        EXPECT_EQ(exited.code, kStillActive);
    }
    EXPECT_EQ(processes.loadedLibraries(), Strings{kDll});
    EXPECT_EQ(processes.openThreads(), 1u);
}

TEST_F(ComUnregisterTest, UnRegServerAsksOnlyAFileThatExists) {
    processes.addComponent(kDll, MemoryComponent{kBothEntries});
    EXPECT_FALSE(UnRegServer(kDll));
    files.addFile(kDll, "MZ");
    EXPECT_TRUE(UnRegServer(kDll));
    EXPECT_EQ(processes.entriesRun(), Strings{kDll + "|DllUnregisterServer"});
}

}  // namespace
}  // namespace orvex
