// ComScan_test.cpp: CLSIDs found as keys or value names in each component place, and
// module-usage entries found by digest or by name.
#include "scan/ComScan.h"

#include "logs/LogFixture.h"
#include "platform/Md5.h"
#include "scan/IndexPlanting.h"

namespace orvex {
namespace {

using platform::Hive;

using Pairs = std::vector<std::pair<std::string, std::string>>;

const std::string kClsid = "{11111111-2222-3333-4444-555555555555}";
const std::string kModuleUsage = "Software\\Microsoft\\Windows\\CurrentVersion\\moduleusage";
const std::string kModuleUsageLocation = "HKEY_LOCAL_MACHINE\\" + kModuleUsage;

class ComScanTest : public testing::LogTest {
  protected:
    ComScanTest() { ClsidIntialize(); }

    void Locate(std::string clsid = kClsid, std::string threat = "BadBar") {
        CLSIDLocate(clsid, threat);
    }

    static Pairs Found() {
        Pairs rows;
        for (const ScumRow& row : ScumListOfRun())
            rows.emplace_back(row.location, row.category);
        return rows;
    }

    void ModuleEntry(const std::string& name) {
        registry.addKey(Hive::LocalMachine, kModuleUsage + "\\" + name);
    }
};

TEST_F(ComScanTest, EachPlaceReportsAKeyUnderItsOwnLocation) {
    for (const ComKeyRow& place : std::vector<ComKeyRow>(ComKeyTable.begin(), ComKeyTable.end())) {
        SCOPED_TRACE(place.rootName + "\\" + place.path);
        ScumListOfRun().clear();  // each place on its own
        const std::string key = place.path.empty() ? kClsid : place.path + "\\" + kClsid;
        registry.addKey(place.root, key);
        Locate();
        // The root place keeps its empty path: "...ROOT\\".
        ASSERT_EQ(Found(), (Pairs{{place.rootName + "\\" + place.path + "\\", "Registry(Key)"}}));
        EXPECT_EQ(ScumListOfRun().row(1).name + "|" + ScumListOfRun().row(1).item,
                  "BadBar|" + kClsid);
        registry.removeKey(place.root, key);
    }
}

TEST_F(ComScanTest, ValueNameIsFoundAndAKeyOfTheSameNameWins) {
    const std::string toolbar = "SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar";
    registry.setString(Hive::LocalMachine, toolbar, kClsid, "bar");
    registry.setString(Hive::CurrentUser, "SOFTWARE", kClsid, "x");
    registry.addKey(Hive::CurrentUser, "SOFTWARE\\" + kClsid);
    Locate();
    EXPECT_EQ(Found(), (Pairs{{"HKEY_CURRENT_USER\\SOFTWARE\\", "Registry(Key)"},
                              {"HKEY_LOCAL_MACHINE\\" + toolbar + "\\", "Registry(Value)"}}));
}

TEST_F(ComScanTest, ValueDataDecidesByItsTextFormAndAnEmptyClsidFindsNothing) {
    const std::string toolbar = "SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar";
    registry.setString(Hive::LocalMachine, toolbar, kClsid, "");
    registry.setBinary(Hive::LocalMachine, "SOFTWARE", kClsid, "");
    registry.setDword(Hive::CurrentUser, "SOFTWARE", kClsid, 0);
    registry.addKey(Hive::ClassesRoot, "CLSID\\Anything");
    Locate("");  // an empty CLSID finds nothing
    Locate();
    EXPECT_EQ(Found(), (Pairs{{"HKEY_CURRENT_USER\\SOFTWARE\\", "Registry(Value)"}}));
}

TEST_F(ComScanTest, StopAtARowsYieldEndsTheWalkWithoutItsFinding) {
    registry.addKey(Hive::ClassesRoot, "CLSID\\" + kClsid);
    registry.addKey(Hive::ClassesRoot, kClsid);
    registry.addKey(Hive::LocalMachine, "SOFTWARE\\" + kClsid);
    host.AtYield(2, [] { App().StopRequested = VbTrue; });
    Locate();
    EXPECT_EQ(Found(), (Pairs{{"HKEY_CLASSES_ROOT\\CLSID\\", "Registry(Key)"}}));
    EXPECT_EQ(host.Yields(), 2);
}

TEST_F(ComScanTest, ExtractFileNameSpecialCases) {
    EXPECT_EQ((std::vector<std::string>{
                  ExtractFileNameSpecial("c:/windows/system/x.dll"),
                  ExtractFileNameSpecial("c:/windows/"), ExtractFileNameSpecial("Module \\rest"),
                  ExtractFileNameSpecial("ab\\c"), ExtractFileNameSpecial("plain.dll")}),
              (std::vector<std::string>{"x.dll", "", "Module", "a", "plain.dll"}));
}

// An entry whose file has gone is found by name under each threat; a digest hit wins over
// the name; names above ASCII are lower-cased as ANSI.
TEST_F(ComScanTest, ModuleUsageEntriesByDigestOrByName) {
    testing::PlantNames({{"x.dll", "Bad"}});
    EnumerateSpecialKeys();  // a missing key is no failure
    EXPECT_EQ(ScumListOfRun().count(), 0);
    EXPECT_FALSE(files.exists(kErrorLog));
    ModuleEntry("c:/windows/system/BAD.dll");
    ModuleEntry("c:/windows/system/good.dll");
    files.addFile("C:\\Win\\hashed.dll", "payload");
    ModuleEntry("C:/Win/hashed.dll");
    ModuleEntry("c:/x/\xC9VIL.dll");
    testing::PlantDigests(
        {{platform::Md5Hex("payload"), "ByHash"}, {"00000000000000000000000000000000", "Z"}});
    testing::PlantNames({{"bad.dll", "One"},
                         {"bad.dll", "Two"},
                         {"other.dll", "Three"},
                         {"hashed.dll", "ByName"},
                         {"\xE9vil.dll", "Accent"}});
    EnumerateSpecialKeys();
    std::vector<std::string> rows;
    for (const ScumRow& row : ScumListOfRun()) {
        EXPECT_EQ(row.location + "|" + row.category, kModuleUsageLocation + "|Registry(Key)");
        rows.push_back(row.name + "|" + row.item);
    }
    EXPECT_EQ(rows, (std::vector<std::string>{
                        "One|c:/windows/system/BAD.dll", "Two|c:/windows/system/BAD.dll",
                        "ByHash|C:/Win/hashed.dll", "Accent|c:/x/\xC9VIL.dll"}));
}

TEST_F(ComScanTest, ModuleUsageStopInTheDigestWalkEndsEverything) {
    files.addFile("C:\\Win\\a.dll", "a");
    ModuleEntry("C:/Win/a.dll");
    ModuleEntry("c:/gone/b.dll");
    std::string hash = platform::Md5Hex("a");
    testing::PlantDigests({{hash, "A"}});
    testing::PlantNames({{"a.dll", "NameA"}, {"b.dll", "NameB"}});
    host.AtYield(1, [] { App().StopRequested = VbTrue; });
    EnumerateSpecialKeys();
    EXPECT_EQ(ScumListOfRun().count(), 0);
}

}  // namespace
}  // namespace orvex
