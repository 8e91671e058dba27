// DetailsPage_test.cpp: frmdetails shows the recorder's lists, which outlive the form.
#include "pages/DetailsPage.h"

#include "scan/Recorder.h"
#include "support/MemoryFixture.h"
#include "ui/Form.h"

namespace orvex {
namespace {

using DetailsPageTest = testing::MemoryPlatformTest;

TEST_F(DetailsPageTest, ViewsReadTheRecordersListsAcrossUnloads) {
    ScumListDetailsAdd("Evil", "FileSystem", "C:\\Temp\\", "evil.exe", "");
    FrmDetails& page = frmdetails();
    EXPECT_EQ(page.Name, "frmdetails");
    EXPECT_EQ(page.FindControl("lvDetails"), &page.lvDetails);
    EXPECT_FALSE(page.lvDetails.Visible);
    EXPECT_FALSE(page.List1.Visible);
    page.lvDetails.Rows().setChecked(1, true);

    ASSERT_TRUE(ui::Unload(page));
    ScumListDetailsAdd("Other", "FileSystem", "C:\\Temp\\", "other.exe", "");
    const FrmDetails& again = frmdetails();
    ASSERT_EQ(again.lvDetails.Rows().count(), 2);
    EXPECT_TRUE(again.lvDetails.Rows().row(1).checked);
    EXPECT_EQ(again.List1.Names().ListCount(), 2);
}

}  // namespace
}  // namespace orvex
