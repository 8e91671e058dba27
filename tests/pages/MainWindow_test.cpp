#include "pages/MainWindow.h"

#include "core/AppState.h"
#include "core/Version.h"
#include "definitions/DefinitionCompiler.h"
#include "pages/AboutBox.h"
#include "stores/AllowedItems.h"
#include "stores/BackupStore.h"
#include "support/MemoryFixture.h"
#include "ui/Language.h"

namespace orvex {
namespace {

class MainWindowTest : public testing::MemoryPlatformTest {
  protected:
    MainWindowTest() {
        App().AppPath = "C:\\App";
        App().DataFolder = "C:\\Data\\";
        files.addFolder("C:\\App");
        files.addFolder("C:\\Data");
    }
};

TEST_F(MainWindowTest, ActionsLoadsAllowedListDefinitionsAndBackupsAndCreatesTheKey) {
    files.addFile("C:\\App\\Exclude.dat", "Threat^C:\\x\\^a.exe^FileSystem\r\n");
    files.addFile("C:\\App\\Backup.Dat",
                  "FileSystem*1/1/2026*Threat*C:\\x\\*a.exe*C:\\b\\1.asw*\r\n");
    files.addFile("C:\\Data\\ovsdef.dat",
                  CompileDefinitionSource("Ver=11/22/2026\n[Files]\nA|a.exe\nB|b.exe\n[End]\n"));

    frmmain().actions();

    EXPECT_EQ(ExclusionRecords().Count(), 1);
    EXPECT_EQ(BackupRecords().Count(), 1);
    EXPECT_EQ(App().DefinitionDate, "11/22/2026");
    EXPECT_TRUE(registry.hasKey(platform::Hive::LocalMachine, "Software\\Norvani\\Orvex Sentry"));
    EXPECT_TRUE(frmmain().Image2.Enabled);
    EXPECT_EQ(host.MousePointer(), ui::pointer::kArrow);
}

TEST_F(MainWindowTest, TheAboutBoxShowsTheVersionsAsTheyStandAndCloses) {
    App().StaticDefinitionVer = "3";
    EXPECT_EQ(frmHelp().lbl1.Caption + "|" + frmHelp().lbl2.Caption + "|" + frmHelp().lbl3.Caption,
              std::to_string(kVersion.major) + "." + std::to_string(kVersion.minor) + "." +
                  std::to_string(kVersion.revision) + "||3");
    frmHelp().Image1.Click();
    EXPECT_FALSE(ui::IsLoaded<FrmHelp>());
}

// The pictures follow the mouse, and the command runs on the left button's press.
TEST_F(MainWindowTest, ImageButtonsFollowTheMouseAndActOnTheLeftPress) {
    ui::ImageButton& scan = frmmain().Image2;
    int pressed = 0;
    scan.Click = [&] { ++pressed; };
    std::vector<int> pictures{scan.Picture};
    scan.OnMouseMove();
    pictures.push_back(scan.Picture);
    scan.OnMouseDown(2);
    pictures.push_back(scan.Picture);
    scan.OnMouseDown(1);
    pictures.push_back(scan.Picture * 10 + pressed);
    scan.OnMouseUp();
    pictures.push_back(scan.Picture * 10 + pressed);
    frmmain().Image3.OnMouseMove();
    ui::ShowNormalPictures(frmmain());
    pictures.push_back(frmmain().Image3.Picture);
    EXPECT_EQ(pictures, (std::vector<int>{1, 3, 3, 21, 11, 4}));
}

// The language menu lists the files, ticks the one in use, and a confirmed choice applies the
// file to every loaded form and is kept; form captions change, messages wait for a restart.
TEST_F(MainWindowTest, TheLanguageMenuListsTheFilesAndAConfirmedChoiceTranslatesTheForms) {
    frmmain().MLSFillMenuLanguages();
    ASSERT_EQ(host.Messages().size(), 1u);
    EXPECT_EQ(host.Messages()[0].prompt, "Non \xE8 presente alcun file di linguaggio!");

    files.addFile("C:\\App\\English.lng", "[frmmain]\r\nfrmmain.Caption=Main\r\n");
    files.addFile("C:\\App\\Deutsch.LNG",
                  "[frmmain]\r\nfrmmain.Tag=de\r\nlbl2.Caption=Titel\r\n"
                  "mnuLanguage(1).ToolTipText=Sprache\r\n[Strings]\r\n22=Orvex Sentry\r\n");
    files.addFile("C:\\App\\notes.txt");
    files.addFolder("C:\\App\\old.lng");
    files.addFile("C:\\App\\LangSetting.ini", "[Language]\r\nCurrentLanguage=English\r\n");
    frmmain().MLSFillMenuLanguages();
    const auto menu = [] {
        std::string text;
        for (const auto& item : frmmain().mnuLanguage)
            text += item->Caption + (item->Checked ? "* " : " ");
        return text;
    };
    EXPECT_EQ(menu(), "Deutsch English* ");

    frmmain().lbl1.Caption = "kept";
    host.Answer(ui::msgbox::kNo);
    frmmain().mnuLanguage[0]->Click();
    EXPECT_EQ(menu() + frmmain().Caption, "Deutsch English* Orvex Sentry");
    host.Answer(ui::msgbox::kYes);
    frmmain().mnuLanguage[0]->Click();
    EXPECT_EQ(menu() + CurrentLanguage(), "Deutsch* English Deutsch");
    // A caption the file lacks goes empty on the form, stays on a control; the tag follows.
    EXPECT_EQ(frmmain().Caption + "|" + frmmain().Tag + "|" + frmmain().lbl2.Caption + "|" +
                  frmmain().lbl1.Caption + "|" + frmmain().mnuLanguage[1]->ToolTipText,
              "|de|Titel|kept|Sprache");
    EXPECT_EQ(ReadLanguageValue(LanguageSettingsFile(), "Language", "CurrentLanguage"), "Deutsch");
}

}  // namespace
}  // namespace orvex
