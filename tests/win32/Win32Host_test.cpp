// Win32Host_test.cpp: what only the Win32 back-end shows: the terminators of stored
// registry texts, the machine's own keys, the version each Wine prefix reports, the Toolhelp
// snapshot order and real folders.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it builds on.
#include <tlhelp32.h>

#include "platform/win32/Win32Processes.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32System.h"

namespace orvex::platform::win32 {
namespace {

constexpr Hive kUser = Hive::CurrentUser;
const std::string kRoot = "Software\\OrvexSentryTest";

class Win32RegistryTest : public ::testing::Test {
  protected:
    void SetUp() override {
        reg.deleteTree(kUser, kRoot);
        ASSERT_EQ(reg.createKey(kUser, kRoot), regstatus::kOk);
    }
    void TearDown() override { reg.deleteTree(kUser, kRoot); }

    // The raw bytes and type Windows holds for a value, past the back-end; written first
    // when a type is given.
    std::pair<std::string, DWORD> raw(const std::string& name, DWORD type = 0,
                                      const std::string& data = "") {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kRoot.c_str(), 0, KEY_ALL_ACCESS, &key),
                  ERROR_SUCCESS);
        if (type != 0)
            RegSetValueExA(key, name.c_str(), 0, type, reinterpret_cast<const BYTE*>(data.data()),
                           static_cast<DWORD>(data.size()));
        char bytes[256];
        DWORD size = sizeof bytes;
        const LONG status = RegQueryValueExA(key, name.c_str(), nullptr, &type,
                                             reinterpret_cast<BYTE*>(bytes), &size);
        RegCloseKey(key);
        return {std::string(bytes, status == ERROR_SUCCESS ? size : 0), type};
    }
    std::string read(const std::string& name) {
        RegValue value;
        EXPECT_EQ(reg.readValue(kUser, kRoot, name, value), regstatus::kOk) << name;
        return value.data;
    }

    Win32Registry reg;
};

TEST_F(Win32RegistryTest, TextIsStoredWithOneTerminatorAndReadWithoutIt) {
    ASSERT_EQ(reg.writeValue(kUser, kRoot, {"Text", regtype::kSz, "abc"}), regstatus::kOk);
    EXPECT_EQ(raw("Text"), std::pair(std::string("abc\0", 4), DWORD{REG_SZ}));
    // Other programs store text with extra NULs or with none; only one is taken off.
    const std::pair<std::string, std::string> stored[] = {
        {std::string("xy\0\0", 4), std::string("xy\0", 3)}, {"xyz", "xyz"}, {"", ""}};
    for (const auto& [bytes, text] : stored) {
        raw("Other", REG_SZ, bytes);
        EXPECT_EQ(read("Other"), text);
    }
}

TEST_F(Win32RegistryTest, LocalMachineIsReadable) {
    std::vector<RegSubKey> keys;
    ASSERT_EQ(reg.listSubKeys(Hive::LocalMachine, "Software", keys), regstatus::kOk);
    EXPECT_FALSE(keys.empty());
    RegValue value;
    ASSERT_EQ(reg.readValue(Hive::LocalMachine, "Software\\Microsoft\\Windows NT\\CurrentVersion",
                            "CurrentVersion", value),
              regstatus::kOk);
    EXPECT_EQ(value.type, regtype::kSz);
    EXPECT_NE(value.data.find('.'), std::string::npos) << value.data;  // "6.1" and the like
}

TEST(Win32Processes, Nt5PrefixReportsMajorVersionFive) {
    const auto version = Win32Processes().osVersion();
    EXPECT_TRUE(version && version->platformId == 2 && version->major == 5);
}

TEST(Win32Processes, DefaultPrefixReportsVistaOrLaterAndListsInToolhelpOrder) {
    EXPECT_GE(Win32Processes().osVersion()->major, 6u);
    const std::vector<std::string> names = Win32Processes().listImageNames();
    ASSERT_FALSE(names.empty());
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    ASSERT_NE(snapshot, INVALID_HANDLE_VALUE);
    PROCESSENTRY32 first{};
    first.dwSize = sizeof first;
    ASSERT_TRUE(Process32First(snapshot, &first));
    CloseHandle(snapshot);
    EXPECT_EQ(names.front(), first.szExeFile);
}

TEST(Win32System, TheSystemFolderIsThere) {
    EXPECT_NE(GetFileAttributesA(Win32System().systemFolder().c_str()), INVALID_FILE_ATTRIBUTES);
}

}  // namespace
}  // namespace orvex::platform::win32
