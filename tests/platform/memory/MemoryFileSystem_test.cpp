// MemoryFileSystem_test.cpp: the in-memory file system behaves as Windows does.
#include <gtest/gtest.h>

#include "support/MemoryFixture.h"

namespace orvex::platform::memory {
namespace {

class MemoryFileSystemTest : public testing::MemoryPlatformTest {};

TEST_F(MemoryFileSystemTest, NamesIgnoreCaseAndKeepTheirSpelling) {
    files.addFile("C:\\Program Files\\App\\Tool.EXE", "MZ");
    EXPECT_TRUE(files.fileExists("c:\\PROGRAM FILES\\app\\tool.exe"));
    EXPECT_TRUE(files.folderExists("C:\\program files"));
    EXPECT_EQ(files.longPath("C:\\program files\\APP\\tool.exe"),
              "C:\\Program Files\\App\\Tool.EXE");
}

}  // namespace
}  // namespace orvex::platform::memory
