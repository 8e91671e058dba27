#include "pages/MainWindow.h"

#include "core/AppState.h"
#include "definitions/DefinitionCompiler.h"
#include "stores/AllowedItems.h"
#include "stores/BackupStore.h"
#include "support/MemoryFixture.h"

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

}  // namespace
}  // namespace orvex
