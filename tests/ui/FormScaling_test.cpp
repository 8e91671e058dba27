// FormScaling_test.cpp: controls following a resized form by whole percentages of its
// first size, and the ones that stay where they are.
#include "ui/FormScaling.h"

#include "core/AppState.h"
#include "support/MemoryFixture.h"

namespace orvex::ui {
namespace {

class Resizable : public Form {
  public:
    Resizable(const std::string& name = "frmsuccess") : Form(name) {
        Width = 4000;
        Height = 2000;
        place(bar, 100, 200, 1000, 300);
        place(parked, -75000, 0, 400, 400);
        place(halfParked, -74000, 0, 400, 400);
        place(fixed, 100, 100, 100, 100);
        fixed.Tag = "Resize=Never";  // only the first eight characters count
        place(picture, 100, 100, 100, 100);
        rule.X1 = 0;
        rule.X2 = 4000;
        rule.Y1 = rule.Y2 = 1000;
    }
    static void place(Control& c, int left, int top, int width, int height) {
        c.Left = left, c.Top = top, c.Width = width, c.Height = height;
    }
    static std::string at(const Control& c) {
        return std::to_string(c.Left) + "," + std::to_string(c.Top) + " " +
               std::to_string(c.Width) + "x" + std::to_string(c.Height);
    }
    Label bar{*this, "lblBar"};
    Label parked{*this, "lblParked"};
    Label halfParked{*this, "lblHalf"};
    Label fixed{*this, "lblFixed"};
    PictureBox picture{*this, "IMAGE25"};
    Line rule{*this, "Line1"};
};

class FormScalingTest : public testing::MemoryPlatformTest {
  protected:
    FormScalingTest() { App().DataFolder = "C:\\"; }
};

TEST_F(FormScalingTest, ControlsMoveByTheWholePercentageTheFormChanged) {
    Resizable form;
    AddForm(form);
    form.Width = 6000;   // 150 percent
    form.Height = 2019;  // under one percent more: nothing moves that way
    ResizeForm(form);
    EXPECT_EQ(Resizable::at(form.bar), "150,200 1500x300");
    EXPECT_EQ(Resizable::at(form.parked), "-75000,0 600x400");  // measured at 0, still parked
    EXPECT_EQ(Resizable::at(form.halfParked), "-73500,0 600x400");
    EXPECT_EQ(Resizable::at(form.fixed) + " " + Resizable::at(form.picture),
              "100,100 100x100 100,100 100x100");
    EXPECT_EQ(form.rule.X2 * 10000 + form.rule.Y1, 6000 * 10000 + 1000);
    EXPECT_FALSE(ScalingRecordsOfRun().resizing);
}

// Records are found by name, so a second form's namesakes take the first one's geometry.
TEST_F(FormScalingTest, RecordsAreMadeOnFirstUseAndKeptByName) {
    Resizable first;
    first.Width = 0;
    EXPECT_EQ(PerWidth(first, 100), 0);
    EXPECT_NE(ErrorLog().find("Procedure ( PerWidth )"), std::string::npos);
    EXPECT_EQ(ScalingRecordsOfRun().forms.size(), 1u);
    EXPECT_EQ(PerHeight(first, 3000), 150);

    Resizable other("frmother");
    other.bar.Left = 900;
    EXPECT_EQ(AddForm(other), 2);
    EXPECT_EQ(ScalingRecordsOfRun().controls.size(), 6u);
    other.Width = 8000;
    ResizeControl(other.bar, other);
    EXPECT_EQ(other.bar.Left, 200);
}

}  // namespace
}  // namespace orvex::ui
