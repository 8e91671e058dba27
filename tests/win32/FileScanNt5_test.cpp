// FileScanNt5_test.cpp: a file that another process holds open without sharing, walked on
// Wine's real file system: it has no digest and is judged by its name. The rest of the walk
// under Wine is shown by the command-line feature tests.
#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "app/ProcessState.h"
#include "core/AppState.h"
#include "definitions/DefinitionTables.h"
#include "platform/Md5.h"
#include "platform/Platform.h"
#include "scan/FileScan.h"
#include "scan/IndexPlanting.h"
#include "scan/Recorder.h"
#include "ui/Form.h"
#include "ui/HeadlessHost.h"

namespace orvex {
namespace {

const std::string kBadBytes = "harmless bytes that the definitions list by their digest";

class FileScanNt5Test : public ::testing::Test {
  protected:
    FileScanNt5Test() : host_(platform::MakeHostPlatform()), installed_(host_->view()), ui_(ui) {
        char temp[MAX_PATH + 1] = {};
        GetTempPathA(MAX_PATH, temp);
        work_ = std::string(temp) + "orvexfilescannt5";
        RemoveTree(work_);
        CreateDirectoryA(work_.c_str(), nullptr);
        // The program's folder, inside the walked tree; the scan log is written there.
        App().AppPath = work_ + "\\Orvex Sentry";
        CreateDirectoryA(App().AppPath.c_str(), nullptr);
        SetDefinitions();
    }
    ~FileScanNt5Test() override { RemoveTree(work_); }

    // The tables as a load leaves them: indexes sorted, exclusion lines sorted.
    static void SetDefinitions() {
        testing::PlantDigests({{platform::Md5Hex(kBadBytes), "HashThreat"}});
        testing::PlantNames({{"toolbar.dll", "NameThreat"}});
        AppendLine(Definitions().ExclusionDefs, "toolbar.dll|namethreat|||0|1");
    }

    // Writes `bytes` to `relative` below the work folder, making its folder first.
    void Plant(const std::string& relative, const std::string& bytes) const {
        const std::string path = work_ + "\\" + relative;
        CreateDirectoryA(path.substr(0, path.rfind('\\')).c_str(), nullptr);
        HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE) << path;
        DWORD written = 0;
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
        CloseHandle(file);
    }

    // Walks the work folder as the drive walk does: drive, then the folder below it.
    void Walk() const { colFiles().LoadFiles(work_.substr(0, 2), work_.substr(2)); }

    // Each finding as "location|item|name|category|level".
    static std::vector<std::string> Findings() {
        std::vector<std::string> rows;
        for (const ScumRow& row : ScumListOfRun())
            rows.push_back(row.location + "|" + row.item + "|" + row.name + "|" + row.category +
                           "|" + row.level);
        return rows;
    }

    const std::string& Work() const { return work_; }
    ui::HeadlessHost ui;

  private:
    static void RemoveTree(const std::string& folder) {
        WIN32_FIND_DATAA entry;
        HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &entry);
        if (search == INVALID_HANDLE_VALUE) return;
        do {
            const std::string name = entry.cFileName;
            if (name == "." || name == "..") continue;
            const std::string path = folder + "\\" + name;
            if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
                RemoveTree(path);
            else
                DeleteFileA(path.c_str());
        } while (FindNextFileA(search, &entry));
        FindClose(search);
        RemoveDirectoryA(folder.c_str());
    }

    // First of all: the process as before start-up, then the real platform installed.
    struct Reset {
        Reset() { ResetProcessState(); }
        ~Reset() { ResetProcessState(); }
    } reset_;
    std::unique_ptr<platform::OwnedPlatform> host_;
    platform::ScopedPlatform installed_;
    ui::ScopedHost ui_;
    std::string work_;
};

TEST_F(FileScanNt5Test, AFileHeldOpenByAnotherIsJudgedByItsNameAlone) {
    Plant("held\\toolbar.dll", kBadBytes);
    const std::string path = Work() + "\\held\\toolbar.dll";
    HANDLE held = CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_NE(MD5File(path).find(kMd5FileNotFound), std::string::npos);

    Walk();
    CloseHandle(held);

    EXPECT_EQ(Findings(), (std::vector<std::string>{Work() + "\\held\\|toolbar.dll|NameThreat|"
                                                             "FileSystem|Confirmed"}));
}

}  // namespace
}  // namespace orvex
