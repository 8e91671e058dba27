// ScanNt5_test.cpp: the memory and registry scans against Wine's real processes and
// registry, in a prefix that reports Windows XP. The planted processes are copies of this
// test program that only sleep.
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>

#include "core/AppState.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "scan/MemoryScan.h"
#include "scan/Recorder.h"
#include "scan/RegistryScan.h"
#include "scan/RunProc.h"
#include "ui/Form.h"
#include "ui/HeadlessHost.h"
#include "win32/SleepingChild.h"

namespace orvex {
namespace {

using testing::kChildUnendedExitCode;
using testing::kSleepArgument;
using testing::ThisExecutable;

constexpr const char* kPlantedName = "orvexplanted.exe";
constexpr const char* kTestKey = "Software\\OrvexScanNt5Test";

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('\\') + 1);
}

// A sleeping copy of this program at `path`, ended and deleted with the object.
class PlantedProcess {
  public:
    explicit PlantedProcess(std::string path) : path_(std::move(path)) {
        if (!CopyFileA(ThisExecutable().c_str(), path_.c_str(), FALSE)) return;
        std::string commandLine = "\"" + path_ + "\" " + kSleepArgument;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        if (!CreateProcessA(path_.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr,
                            nullptr, &startup, &started))
            return;
        CloseHandle(started.hThread);
        process_ = started.hProcess;
        pid_ = started.dwProcessId;
    }
    ~PlantedProcess() {
        if (process_ != nullptr) {
            TerminateProcess(process_, kChildUnendedExitCode);
            WaitForSingleObject(process_, 10000);
            CloseHandle(process_);
        }
        DeleteFileA(path_.c_str());
    }
    PlantedProcess(const PlantedProcess&) = delete;
    PlantedProcess& operator=(const PlantedProcess&) = delete;

    bool started() const { return process_ != nullptr; }

    // Waits until the process list shows it with its path.
    bool Listed() const {
        const std::string wanted = std::to_string(pid_) + "|";
        for (int wait = 0; wait < 100; ++wait) {
            for (const std::string& entry : clsRunProc().RunningProcs()) {
                if (entry.rfind(wanted, 0) == 0 && entry.size() > wanted.size()) return true;
            }
            Sleep(50);
        }
        return false;
    }

    // True when it ended within the wait, with exit code 0 (terminated, not timed out).
    bool EndedByTermination() const {
        if (WaitForSingleObject(process_, 10000) != WAIT_OBJECT_0) return false;
        DWORD exitCode = kChildUnendedExitCode;
        GetExitCodeProcess(process_, &exitCode);
        return exitCode == 0;
    }

  private:
    std::string path_;
    HANDLE process_ = nullptr;
    DWORD pid_ = 0;
};

class ScanNt5Test : public ::testing::Test {
  protected:
    ScanNt5Test() : host_(platform::MakeHostPlatform()), installed_(host_->view()), ui_(ui) {
        App() = AppState{};
        ui::ResetForms();
        Definitions() = DefinitionTables{};
        ScumListOfRun().clear();
        List1OfRun().Clear();
        char temp[MAX_PATH + 1] = {};
        GetTempPathA(MAX_PATH, temp);
        work_ = std::string(temp) + "orvexscannt5\\";
        CreateDirectoryA(work_.c_str(), nullptr);
        App().AppPath = work_.substr(0, work_.size() - 1);
        App().DataFolder = work_;
    }
    ~ScanNt5Test() override {
        ui::ResetForms();
        Definitions() = DefinitionTables{};
        ScumListOfRun().clear();
        List1OfRun().Clear();
        App() = AppState{};
    }

    static void ListedName(const std::string& fileName, const std::string& threat) {
        Definitions().FileIndex.Items = {FileRecord{}, FileRecord{threat, fileName}};
        AppendLine(Definitions().ExclusionDefs, fileName + "||||0|0");
    }

    const std::string& Work() const { return work_; }
    ui::HeadlessHost ui;

  private:
    std::unique_ptr<platform::OwnedPlatform> host_;
    platform::ScopedPlatform installed_;
    ui::ScopedHost ui_;
    std::string work_;
};

TEST_F(ScanNt5Test, PlantedProcessIsFoundInMemoryAndEndedInKillMode) {
    ASSERT_EQ(clsRunProc().OS(), oskind::kNt5);
    PlantedProcess planted(FolderOf(ThisExecutable()) + kPlantedName);
    ASSERT_TRUE(planted.started());
    ASSERT_TRUE(planted.Listed());
    ListedName(kPlantedName, "Planted Threat");

    VbBool killMode = VbFalse;
    ScanMemory(killMode);
    ASSERT_EQ(ScumListOfRun().count(), 1);
    const ScumRow& row = ScumListOfRun().row(1);
    EXPECT_EQ(row.name, "Planted Threat");
    EXPECT_EQ(row.category, "Memory Resident");
    EXPECT_EQ(row.item, kPlantedName);
    EXPECT_EQ(LCase(row.location), LCase(FolderOf(ThisExecutable())));

    ScumListOfRun().setChecked(1, true);
    killMode = VbTrue;
    ScanMemory(killMode);
    EXPECT_TRUE(planted.EndedByTermination());
}

TEST_F(ScanNt5Test, AgentStartedFromASpyagentFolderIsEndedAtStartUp) {
    const std::string folder = Work() + "spyagent\\";
    CreateDirectoryA(folder.c_str(), nullptr);
    {
        PlantedProcess agent(folder + "monitor.exe");
        ASSERT_TRUE(agent.started());
        ASSERT_TRUE(agent.Listed());
        RemoveSurveillanceAgent();
        EXPECT_TRUE(agent.EndedByTermination());
        EXPECT_TRUE(ScumListOfRun().empty());
    }
    RemoveDirectoryA(folder.c_str());
}

TEST_F(ScanNt5Test, RegistryCheckFindsAPlantedKeyAndValue) {
    auto& registry = platform::Registry();
    const std::string planted = std::string(kTestKey) + "\\Planted";
    registry.deleteTree(platform::Hive::CurrentUser, kTestKey);
    ASSERT_EQ(registry.createKey(platform::Hive::CurrentUser, planted), 0);
    ASSERT_EQ(registry.writeValue(platform::Hive::CurrentUser, planted,
                                  {"Run Me", platform::regtype::kSz, "C:\\Evil\\Planted.exe"}),
              0);
    ASSERT_EQ(registry.writeValue(platform::Hive::CurrentUser, planted,
                                  {"Count", platform::regtype::kDword, std::string(4, '\x07')}),
              0);

    RegistryCheck(0x80000001u, planted, "", "Planted Key");
    RegistryCheck(0x80000001u, planted, "planted.EXE", "Planted Value");
    RegistryCheck(0x80000001u, std::string(kTestKey) + "\\Missing", "", "Missing Key");
    registry.deleteTree(platform::Hive::CurrentUser, kTestKey);

    ASSERT_EQ(ScumListOfRun().count(), 2);
    EXPECT_EQ(ScumListOfRun().row(1).category, "Registry(Key)");
    EXPECT_EQ(ScumListOfRun().row(1).location,
              "HKEY_CURRENT_USER\\" + std::string(kTestKey) + "\\");
    EXPECT_EQ(ScumListOfRun().row(1).item, "Planted");
    EXPECT_EQ(ScumListOfRun().row(2).category, "Registry(Value)");
    EXPECT_EQ(ScumListOfRun().row(2).location, "HKEY_CURRENT_USER\\" + planted + "|Run Me");
    EXPECT_EQ(ScumListOfRun().row(2).item, "planted.EXE");
}

}  // namespace
}  // namespace orvex
