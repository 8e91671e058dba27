// LogPage_test.cpp: frmlog's load of the scan log and the error log: deciphering, damaged
// lines, the tails kept of long logs, and the error log shortened by a trimmed view.
#include "pages/LogPage.h"

#include "logs/LogFixture.h"
#include "logs/ScanLog.h"
#include "scan/ScanLogWrite.h"

namespace orvex {
namespace {

class LogPageTest : public testing::LogTest {
  protected:
    // `count` records of 100 characters, "record 0001" first.
    std::string NumberedLog(int count) {
        std::string bytes;
        for (int i = 1; i <= count; ++i) {
            std::string number = std::to_string(i);
            std::string plain = "record " + std::string(4 - number.size(), '0') + number;
            plain.resize(100, '.');
            bytes += Stored(plain) + "\r\n";
        }
        return bytes;
    }
};

// Missing logs show nothing and report nothing.
TEST_F(LogPageTest, RecordsOfTheWriterReadBackEachAfterALineEnd) {
    EXPECT_EQ(frmlog().Text1.Text() + frmlog().Text2.Text(), "");
    EXPECT_FALSE(frmlog().Truncated);
    EXPECT_FALSE(files.exists(kErrorLog));
    EXPECT_EQ(host.MousePointer(), ui::pointer::kArrow);
    ui::ResetForms();
    std::int32_t index = 0;
    ScanLogWrite("C:\\", "a.exe", "Start F", "A", "FileSystem", VbTrue, index);
    ScanLogWrite("C:\\", "a.exe", "suspect", "A", "FileSystem", VbTrue, index);
    const auto records = LoggedRecords();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(frmlog().Text1.Text(), "\r\n" + records[0] + "\r\n" + records[1]);
}

// Damaged lines show as the cipher's failure words. Odd bytes are read as delimited fields
// without failing: a comma ends a field, a quote opens one that runs to the next quote, a
// lone LF stays in the field, and NUL and high bytes are bytes like any other.
TEST_F(LogPageTest, DamagedLinesAndOddBytesShowAsTheCipherFailureWords) {
    std::string otherKey = "good";
    files.addFile(kLoggedTxt, "plain text\r\n" + Stored("good") + "\r\nabc<e\r\n" +
                                  Encrypt(otherKey, "OvsLogKez") +
                                  "\r\na,b\r\n\"q,\r\nq\"\r\nx\ny\r\n" +
                                  std::string("\0\xff\x80", 3) + "\r\n\r\n");
    EXPECT_EQ(frmlog().Text1.Text(),
              "\r\nERR1\r\ngood\r\nERR2\r\nERR2\r\nERR1\r\nERR1\r\nERR1\r\nERR1"
              "\r\nERR1\r\nERR1");
    EXPECT_FALSE(files.exists(kErrorLog));
}

TEST_F(LogPageTest, LongScanLogShowsItsTailAndShortensTheErrorLog) {
    files.addFile(kLoggedTxt, NumberedLog(400));  // about 40000 characters
    const std::string errorLog = "Error [ 53 ]:  File not found\r\nLocation:  here";
    files.addFile(kErrorLog, errorLog);
    FrmLog& form = frmlog();
    EXPECT_TRUE(form.Truncated);
    EXPECT_LE(form.Text1.Text().size(), FrmLog::kScanLogLimit);
    EXPECT_GT(form.Text1.Text().size(), FrmLog::kScanLogLimit - FrmLog::kTrimStep);
    EXPECT_TRUE(EndsWith(form.Text1.Text(), "\r\nrecord 0400" + std::string(89, '.')));
    EXPECT_EQ(form.Text1.Text().find("record 0100"), std::string::npos);
    // The error log is rewritten as the box shows it, though it was short itself.
    EXPECT_EQ(form.Text2.Text(), errorLog + "\r\n");
    EXPECT_EQ(files.contents(kErrorLog), errorLog + "\r\n");
}

TEST_F(LogPageTest, LongErrorLogIsCutToItsTailForGood) {
    std::string errorLog;
    for (int i = 0; i < 400; ++i)
        errorLog += "line " + std::to_string(i) + std::string(40, '-') + "\r\n";
    files.addFile(kErrorLog, errorLog);
    FrmLog& form = frmlog();
    EXPECT_TRUE(form.Truncated);
    EXPECT_LE(form.Text2.Text().size(), FrmLog::kErrorLogLimit);
    EXPECT_TRUE(EndsWith(form.Text2.Text(), "line 399" + std::string(40, '-') + "\r\n"));
    EXPECT_EQ(files.contents(kErrorLog), form.Text2.Text());
}

TEST_F(LogPageTest, ShortLogsLeaveTheErrorLogAsItIs) {
    files.addFile(kLoggedTxt, NumberedLog(3));
    const std::string errorLog = "no line end at the end";
    files.addFile(kErrorLog, errorLog);
    FrmLog& form = frmlog();
    EXPECT_FALSE(form.Truncated);
    EXPECT_EQ(form.Text2.Text(), errorLog + "\r\n");
    EXPECT_EQ(files.contents(kErrorLog), errorLog);
}

TEST_F(LogPageTest, ALogThatCannotBeReadIsReportedAndTheViewGoesOn) {
    files.addFile(kLoggedTxt, NumberedLog(2));
    files.lock(kLoggedTxt);
    FrmLog& form = frmlog();
    EXPECT_EQ(form.Text1.Text(), "");
    EXPECT_NE(files.contents(kErrorLog).find("Procedure ( LoadLogs ) - Module ( frmlog )"),
              std::string::npos);
    EXPECT_EQ(host.MousePointer(), ui::pointer::kArrow);
}

// The buttons empty each log for good, turn the two pages and close the window.
TEST_F(LogPageTest, TheButtonsEmptyEachLogTurnThePagesAndClose) {
    std::int32_t index = 0;
    ScanLogWrite("C:\\", "a.exe", "suspect", "A", "FileSystem", VbTrue, index);
    files.addFile(kErrorLog, "Error [ 5 ]:\r\n");
    FrmLog& log = frmlog();
    ASSERT_FALSE(log.Text1.Text().empty() || log.Text2.Text().empty());
    log.Image1_MouseDown(2);  // the right button does nothing
    EXPECT_TRUE(files.exists(kLoggedTxt));
    log.Image1.Click();
    EXPECT_TRUE(log.Text1.Text().empty() && !files.exists(kLoggedTxt));
    log.Image2.Click();
    EXPECT_TRUE(log.Text2.Text().empty() && !files.exists(kErrorLog));
    log.Image6.Click();
    EXPECT_TRUE(log.Picture2.Visible && !log.Picture1.Visible);
    log.Image7.Click();
    EXPECT_TRUE(log.Picture1.Visible && !log.Picture2.Visible);
    log.Image3.Click();
    EXPECT_FALSE(ui::IsLoaded<FrmLog>());
}

}  // namespace
}  // namespace orvex
