// ProgramResources_test.cpp: the Windows program carries the version "orvex version" prints,
// an application manifest and its icon, as Explorer and the loader read them.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/Version.h"

namespace orvex {
namespace {

std::string ProgramPath() {
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, MAX_PATH);
    return (std::filesystem::path(self).parent_path().parent_path() / "apps" / "OrvexSentry.exe")
        .string();
}

std::string VersionValue(const std::vector<char>& block, const std::string& name) {
    char* text = nullptr;
    UINT length = 0;
    const std::string query = "\\StringFileInfo\\040904E4\\" + name;
    if (!VerQueryValueA(block.data(), query.c_str(), reinterpret_cast<void**>(&text), &length))
        return "(none)";
    return text;
}

TEST(ProgramResources, TheProgramCarriesItsVersionManifestAndIcon) {
    const std::string program = ProgramPath();
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA(program.c_str(), &ignored);
    ASSERT_GT(size, 0u) << program;
    std::vector<char> block(size);
    ASSERT_TRUE(GetFileVersionInfoA(program.c_str(), 0, size, block.data()));
    EXPECT_EQ(VersionValue(block, "FileVersion") + "|" + VersionValue(block, "ProductName"),
              VersionText() + "|Orvex Sentry");

    HMODULE image = LoadLibraryExA(program.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(image, nullptr);
    EXPECT_NE(FindResourceA(image, MAKEINTRESOURCEA(1), RT_MANIFEST), nullptr);
    EXPECT_NE(FindResourceA(image, MAKEINTRESOURCEA(100), RT_GROUP_ICON), nullptr);
    FreeLibrary(image);
}

}  // namespace
}  // namespace orvex
