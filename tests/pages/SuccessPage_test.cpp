// SuccessPage_test.cpp: the completion page offers the restart exactly when RestartNeeded is
// set, and both of its buttons end the program.
#include "pages/SuccessPage.h"

#include "core/AppState.h"
#include "support/MemoryFixture.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

class SuccessPageTest : public testing::MemoryPlatformTest {
  protected:
    SuccessPageTest() {
        for (int n : {118, 119, 122, 123, 124, 125, 126})
            LngArray()[n] = "<" + std::to_string(n) + ">";
        App().ThreatCount = 3;
        App().SingleInstanceMutex = system.createMutex("Orvex", true).handle;
    }
    // rt1 with its bold runs between stars, then the places of the buttons shown.
    static std::string Page() {
        const FrmSuccess& page = frmsuccess();
        std::string text;
        for (const ui::TextRun& run : page.rt1.Runs)
            text += run.Bold ? "*" + run.Text + "*" : run.Text;
        const auto at = [](const ui::Control& c) {
            return c.Visible ? std::to_string(c.Left) + "," + std::to_string(c.Top) : "-";
        };
        return text + " " + at(page.Image1) + " " + at(page.cmdrestart);
    }
};

TEST_F(SuccessPageTest, TheRestartIsOfferedOnlyWhenTheRemovalLeftWorkForIt) {
    EXPECT_EQ(Page(), "<118>3<119>*<125>*<126> 224,240 -");
    ui::ResetForms();
    App().HighDpi = VbTrue;
    EXPECT_EQ(Page(), "<118>3<119>*<125>*<126> 270,300 -");
    ui::ResetForms();
    App().RestartNeeded = VbTrue;
    EXPECT_EQ(Page(), "<118>3<119><122>*<123>*<124>*<125>*<126> 248,0 176,0");
}

TEST_F(SuccessPageTest, BothButtonsEndTheProgramAndOnlyOneRestartsWindows) {
    frmsuccess().cmdRestart_Click(2);  // the right button does nothing
    frmsuccess().Image1_MouseDown(2);
    EXPECT_TRUE(system.exitWindowsCalls().empty());
    EXPECT_THROW(frmsuccess().cmdrestart.Click(), ui::ProgramEnded);
    ASSERT_EQ(system.exitWindowsCalls().size(), 1u);
    EXPECT_EQ(system.exitWindowsCalls()[0].flags, 6u);
    EXPECT_FALSE(system.releaseMutex(App().SingleInstanceMutex));  // released on the way out
    EXPECT_THROW(frmsuccess().Image1.Click(), ui::ProgramEnded);
}

}  // namespace
}  // namespace orvex
