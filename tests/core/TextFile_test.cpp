// TextFile_test.cpp: line ends, delimited fields, append-mode overwrite and the failures
// of text files, on the memory file system.
#include "core/TextFile.h"

#include "support/FailureOf.h"
#include "support/MemoryFixture.h"

namespace orvex {
namespace {

using testing::FailureOf;
using V = std::vector<std::string>;

class TextFileTest : public testing::MemoryPlatformTest {
  protected:
    // Every line of a file of these bytes, or with `fields` every delimited field.
    V Read(std::string_view bytes, bool fields = false) {
        files.addFile("C:\\in.txt", bytes);
        TextFile file = TextFile::ForInput("C:\\in.txt");
        V out;
        while (!file.Eof())
            out.push_back(fields ? file.Input() : file.LineInput());
        return out;
    }
};

// The destructor writes what is pending.
TEST_F(TextFileTest, PrintEndsLinesWithCrLf) {
    {
        TextFile file = TextFile::ForOutput("C:\\out.txt");
        file.Print("one");
        file.Print("");
        file.Put("two");
    }
    EXPECT_EQ(files.contents("C:\\out.txt"), "one\r\n\r\ntwo");
}

TEST_F(TextFileTest, LineInputEndsAtCrOrCrLfButNotLoneLf) {
    EXPECT_EQ(Read("a\r\nb\rc\nd\r\n\r\ne"), (V{"a", "b", "c\nd", "", "e"}));
    EXPECT_EQ(Read("last\n"), (V{"last\n"}));
    EXPECT_TRUE(Read("").empty());
}

TEST_F(TextFileTest, LineInputAcrossTheReadBuffer) {
    std::string bytes;
    for (int i = 0; i < 30000; ++i)
        bytes += "line " + std::to_string(i) + "\r\n";
    bytes += std::string(70000, 'x');  // one line longer than any read chunk
    const V lines = Read(bytes);
    ASSERT_EQ(lines.size(), 30001u);
    EXPECT_EQ(lines[29999], "line 29999");
    EXPECT_EQ(lines.back().size(), 70000u);
    // A CR LF split by the read buffer is one line end.
    std::string split(64 * 1024 - 1, 'a');
    EXPECT_EQ(Read(split + "\r\nb"), (V{split, "b"}));
}

TEST_F(TextFileTest, InputReadsDelimitedFields) {
    EXPECT_EQ(Read("  a, b ,\"c, d\"\r\n\"e\"\r\nf\ng,", true),
              (V{"a", "b ", "c, d", "e", "f\ng"}));
    EXPECT_EQ(Read("\"open quote", true), (V{"open quote"}));
    EXPECT_EQ(Read("\"x\"junk,y", true), (V{"x", "y"}));
}

TEST_F(TextFileTest, ReadingPastTheEndIsFailure62AndOpeningAMissingFileFails) {
    files.addFile("C:\\in.txt", "only\r\n");
    TextFile file = TextFile::ForInput("C:\\in.txt");
    EXPECT_EQ(file.LineInput(), "only");
    EXPECT_TRUE(file.Eof());
    EXPECT_EQ(FailureOf([&] { file.LineInput(); }), 62);
    EXPECT_EQ(FailureOf([&] { file.Input(); }), 62);
    // Open failures carry the file system's numbers.
    EXPECT_EQ(FailureOf([] { TextFile::ForInput("C:\\missing.txt"); }), 53);
    EXPECT_EQ(FailureOf([] { TextFile::ForAppend("C:\\no\\such\\log.txt"); }), 76);
    EXPECT_EQ(FailureOf([] { ReadAllBytes("C:\\missing.txt"); }), 53);
}

TEST_F(TextFileTest, SeekToTheStartInAppendModeOverwritesAndKeepsTheRest) {
    files.addFile("C:\\ovs.ph", "a long older entry\r\n");
    TextFile file = TextFile::ForAppend("C:\\ovs.ph");
    file.Seek(1);
    file.Print("new");
    file.Close();
    EXPECT_EQ(files.contents("C:\\ovs.ph"), "new\r\ng older entry\r\n");
}

TEST_F(TextFileTest, BinaryWritesAfterReadsLandAtTheReadPosition) {
    files.addFile("C:\\b.dat", "abc\r\ndef\r\n");
    TextFile file = TextFile::ForBinary("C:\\b.dat");
    EXPECT_EQ(file.LineInput(), "abc");
    file.Put("XYZ");
    EXPECT_EQ(file.LineInput(), "");
    EXPECT_EQ(file.Lof(), 10u);
    file.Close();
    EXPECT_EQ(files.contents("C:\\b.dat"), "abc\r\nXYZ\r\n");
}

}  // namespace
}  // namespace orvex
