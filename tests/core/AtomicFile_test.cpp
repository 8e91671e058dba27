// AtomicFile_test.cpp: whole-file rewrites leave the old or the new file, never a torn one.
#include "core/AtomicFile.h"

#include "support/MemoryFixture.h"

namespace orvex {
namespace {

const std::string kTarget = "C:\\App\\Store.dat";
const std::string kOld = "old line 1\r\nold line 2\r\n";

class AtomicFileTest : public testing::MemoryPlatformTest {
  protected:
    AtomicFileTest() { files.addFile(kTarget, kOld); }

    // Enough lines to need several writes, so that one can fail half way.
    static std::vector<std::string> ManyLines() {
        return std::vector<std::string>(3 * AtomicFile::kWriteChunk / 10, "123456789");
    }

    static int FailureOf(const std::vector<std::string>& lines,
                         const std::string& target = kTarget) {
        try {
            RewriteTextFile(target, lines);
        } catch (const Failure& f) {
            return f.number();
        }
        return 0;
    }

    void ExpectOldFileAndNoTemp() {
        EXPECT_EQ(files.contents(kTarget), kOld);
        EXPECT_FALSE(files.exists(AtomicFile::TempPathFor(kTarget)));
    }
};

TEST_F(AtomicFileTest, ReplacesTheContentWithCrLfLinesAndLeavesNoTemp) {
    RewriteTextFile(kTarget, {"a^b", "", "c"});
    EXPECT_EQ(files.contents(kTarget), "a^b\r\n\r\nc\r\n");
    EXPECT_FALSE(files.exists(AtomicFile::TempPathFor(kTarget)));
    EXPECT_EQ(files.filesBelow("C:\\App"), std::vector<std::string>{kTarget});

    RewriteTextFile(kTarget, {});
    EXPECT_EQ(files.contents(kTarget), "");
    // A missing file is created, and bytes are kept as they are.
    const std::string bytes("\x00\xff\n\r", 4);
    RewriteTextFile("C:\\App\\New.dat", {bytes});
    EXPECT_EQ(files.contents("C:\\App\\New.dat"), bytes + "\r\n");
}

TEST_F(AtomicFileTest, AWriteThatFailsHalfWayLeavesTheOldFile) {
    for (int nth : {1, 2, 3, 4}) {
        files.failWrite(nth, failure::kDiskFull);
        EXPECT_EQ(FailureOf(ManyLines()), failure::kDiskFull) << nth;
        ExpectOldFileAndNoTemp();
    }
}

// A missing folder is path not found.
TEST_F(AtomicFileTest, ATargetThatCannotBeReplacedKeepsItsContent) {
    files.lock(kTarget);
    EXPECT_EQ(FailureOf({"new"}), failure::kPermissionDenied);
    files.lock(kTarget, false);
    ExpectOldFileAndNoTemp();

    files.setAttributes(kTarget, platform::attr::kReadOnly);
    EXPECT_EQ(FailureOf({"new"}), failure::kPathFileAccess);
    ExpectOldFileAndNoTemp();
    EXPECT_EQ(FailureOf({"x"}, "C:\\Gone\\Store.dat"), failure::kPathNotFound);
}

TEST_F(AtomicFileTest, AnAbandonedRewriteChangesNothing) {
    {
        AtomicFile file{kTarget};
        file.Print("half");
        EXPECT_TRUE(files.exists(AtomicFile::TempPathFor(kTarget)));
    }
    ExpectOldFileAndNoTemp();
    // A temporary file left by a crash is overwritten.
    files.addFile(AtomicFile::TempPathFor(kTarget), "torn rest of an earlier run, much longer");
    RewriteTextFile(kTarget, {"new"});
    EXPECT_EQ(files.contents(kTarget), "new\r\n");
    EXPECT_FALSE(files.exists(AtomicFile::TempPathFor(kTarget)));
}

}  // namespace
}  // namespace orvex
