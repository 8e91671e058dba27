// FileScanNt5_test.cpp: the folder walk and the judgment of each file against Wine's real file
// system: digests, names with their [Exclusion] rules, the program's own folder, and a file
// that another process holds open.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

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
        Fresh();
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
    ~FileScanNt5Test() override {
        RemoveTree(work_);
        Fresh();
    }

    // The tables as a load leaves them: indexes sorted, exclusion lines sorted.
    static void SetDefinitions() {
        testing::PlantDigests({{platform::Md5Hex(kBadBytes), "HashThreat"}});
        testing::PlantNames({{"toolbar.dll", "NameThreat"},
                             {"agent.exe", "AgentThreat"},
                             {"dialer.exe", "DialerThreat"},
                             {"big.dat", "BigThreat"}});
        for (const char* line :
             {"agent.exe|agentthreat|||0|1", "big.dat|bigthreat|>1000||3|1",
              "dialer.exe|dialerthreat||\\maybe\\|4|2", "toolbar.dll|namethreat|||0|1"})
            AppendLine(Definitions().ExclusionDefs, line);
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

    // Each finding as "location|item|name|category|level", sorted: the order of a folder's
    // entries is the file system's.
    static std::vector<std::string> Findings() {
        std::vector<std::string> rows;
        for (const ScumRow& row : ScumListOfRun())
            rows.push_back(row.location + "|" + row.item + "|" + row.name + "|" + row.category +
                           "|" + row.level);
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    const std::string& Work() const { return work_; }
    ui::HeadlessHost ui;

  private:
    static void Fresh() {
        App() = AppState{};
        ui::ResetForms();
        Definitions() = DefinitionTables{};
        ScumListOfRun().clear();
        List1OfRun().Clear();
    }

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

    std::unique_ptr<platform::OwnedPlatform> host_;
    platform::ScopedPlatform installed_;
    ui::ScopedHost ui_;
    std::string work_;
};

TEST_F(FileScanNt5Test, PlantedFilesAreJudgedByDigestThenByNameAndTheirExclusionRules) {
    Plant("bad\\toolbar.dll", kBadBytes);  // digest and name: one row, from the digest
    Plant("bad\\readme.txt", kBadBytes);   // not a hashed extension
    Plant("named\\agent.exe", "harmless");
    Plant("maybe\\dialer.exe", "harmless");      // the folder rule: a suspect
    Plant("elsewhere\\dialer.exe", "harmless");  // outside that folder: code 4
    Plant("sized\\big.dat", std::string(2000, 'x'));
    Plant("small\\big.dat", "harmless");    // under the size: code 3
    Plant("Orvex Sentry\\Logged.txt", "");  // before the walk, so the count holds in any order
    Plant("Orvex Sentry\\agent.exe", "harmless");
    Plant("Orvex Sentry\\Data\\toolbar.dll", kBadBytes);

    Walk();

    const std::string w = Work();
    EXPECT_EQ(Findings(), (std::vector<std::string>{
                              w + "\\bad\\|toolbar.dll|HashThreat|FileSystem|Confirmed",
                              w + "\\maybe\\|dialer.exe|DialerThreat|FileSystem|Suspect",
                              w + "\\named\\|agent.exe|AgentThreat|FileSystem|Confirmed",
                              w + "\\sized\\|big.dat|BigThreat|FileSystem|Confirmed",
                          }));
    EXPECT_EQ(App().ItemsScanned, 10);  // the program's own files are counted, not judged
}

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
