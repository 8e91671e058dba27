// Lsp_test.cpp: the Winsock catalogs read, judged and repaired on the memory registry.
#include "scan/Lsp.h"

#include <tuple>

#include "logs/LogFixture.h"
#include "platform/Md5.h"
#include "scan/IndexPlanting.h"

namespace orvex {
namespace {

constexpr auto kMachine = platform::Hive::LocalMachine;
const std::string kParameters = "System\\CurrentControlSet\\Services\\Winsock2\\Parameters";
const std::string kProtocols = kParameters + "\\Protocol_Catalog9";
const std::string kNameSpaces = kParameters + "\\NameSpace_Catalog5";
const std::string kProtocolEntries = kProtocols + "\\Catalog_Entries\\";
const std::string kNameSpaceEntries = kNameSpaces + "\\Catalog_Entries\\";
const std::string kBadFile = "C:\\Spy\\evil.dll";
const std::string kGoodFile = "%SystemRoot%\\system32\\mswsock.dll";

std::string Entry(int n) {
    const std::string digits = std::to_string(n);
    return std::string(12 - digits.size(), '0') + digits;
}

std::vector<std::string> Entries(int count) {
    std::vector<std::string> names;
    for (int n = 1; n <= count; ++n)
        names.push_back(Entry(n));
    return names;
}

// A packed item as the catalog keeps it: the path, a NUL, and binary fields after it.
std::string Packed(const std::string& path, int n) {
    return path + std::string("\0\x2e\xff", 3) + static_cast<char>(n);
}

class LspTest : public testing::LogTest {
  protected:
    LspTest() {
        registry.setString(kMachine, kParameters, "Current_Protocol_Catalog", "Protocol_Catalog9");
        registry.setString(kMachine, kParameters, "Current_NameSpace_Catalog",
                           "NameSpace_Catalog5");
        registry.addKey(kMachine, kProtocols + "\\Catalog_Entries");
        registry.addKey(kMachine, kNameSpaces + "\\Catalog_Entries");
        files.addFile("C:\\WINDOWS\\system32\\mswsock.dll", "winsock");
        system.setEnvironment("SystemRoot", "C:\\WINDOWS");
        files.addFile(kBadFile, "spy payload");
        testing::PlantDigests({{platform::Md5Hex("spy payload"), "SpyThreat"}});
    }

    void Protocol(const std::string& entry, const std::string& path, int n = 0) {
        registry.setBinary(kMachine, kProtocolEntries + entry, "PackedCatalogItem",
                           Packed(path, n));
    }
    void NameSpace(const std::string& entry, const std::string& path) {
        registry.setString(kMachine, kNameSpaceEntries + entry, "LibraryPath", path);
    }
    std::vector<std::string> EntriesOf(const std::string& catalog) {
        return registry.subKeyNames(kMachine, catalog + "\\Catalog_Entries");
    }
    std::vector<std::string> PackedItems() {
        std::vector<std::string> items;
        for (const std::string& entry : EntriesOf(kProtocols))
            items.push_back(
                *registry.data(kMachine, kProtocolEntries + entry, "PackedCatalogItem"));
        return items;
    }
    std::optional<std::uint32_t> Count(const std::string& catalog) {
        return registry.dword(kMachine, catalog, "Num_Catalog_Entries");
    }
};

// The name-space catalog has nothing bad and is renumbered all the same, in the order of
// its enumeration, ten entries up to 000000000010.
TEST_F(LspTest, ABadProtocolEntryGoesAndBothCatalogsAreRenumberedInOrder) {
    for (int n = 1; n <= 5; ++n)
        Protocol(Entry(n), n == 3 ? kBadFile : kGoodFile, n);
    registry.setString(kMachine, kProtocolEntries + Entry(4), "Extra", "lost");
    for (int n = 10; n >= 1; --n)
        NameSpace("x" + std::to_string(n), "C:\\n" + std::to_string(n) + ".dll");

    EXPECT_EQ(LSPCheck(), VbTrue);
    EXPECT_EQ(EntriesOf(kProtocols), Entries(4));
    const std::vector<std::string> kept = {Packed(kGoodFile, 1), Packed(kGoodFile, 2),
                                           Packed(kGoodFile, 4), Packed(kGoodFile, 5)};
    EXPECT_EQ(PackedItems(), kept);
    EXPECT_EQ(Count(kProtocols), 4u);
    EXPECT_EQ(registry.valueNames(kMachine, kProtocolEntries + Entry(3)),
              std::vector<std::string>{"PackedCatalogItem"});
    EXPECT_EQ(EntriesOf(kNameSpaces), Entries(10));
    EXPECT_EQ(registry.data(kMachine, kNameSpaceEntries + Entry(10), "LibraryPath"), "C:\\n1.dll");
    EXPECT_EQ(Count(kNameSpaces), 10u);
    EXPECT_TRUE(ScumListOfRun().empty());
}

TEST_F(LspTest, ANameSpaceEntryComesBackWithEveryValueByteForByte) {
    const std::string key = kNameSpaceEntries + Entry(7);
    const std::string bytes("\x00\xff|,7\x80", 6);
    registry.setString(kMachine, key, "LibraryPath", kGoodFile);
    registry.setBinary(kMachine, key, "ProviderId", bytes);
    registry.setString(kMachine, key, "DisplayString", "Tcpip");
    registry.setDword(kMachine, key, "Enabled", 0xFFFFFFFFu);
    ReOrderNameSpace();
    const std::string renamed = kNameSpaceEntries + Entry(1);
    EXPECT_EQ(EntriesOf(kNameSpaces), Entries(1));
    EXPECT_EQ(registry.data(kMachine, renamed, "LibraryPath"), kGoodFile);
    EXPECT_EQ(registry.value(kMachine, renamed, "ProviderId")->type, platform::regtype::kBinary);
    EXPECT_EQ(registry.data(kMachine, renamed, "ProviderId"), bytes);
    EXPECT_EQ(registry.data(kMachine, renamed, "DisplayString"), "Tcpip");
    EXPECT_EQ(registry.dword(kMachine, renamed, "Enabled"), 0xFFFFFFFFu);
}

TEST_F(LspTest, AnEmptyCatalogGetsACountOfZeroAndNothingElse) {
    for (auto [catalog, reorder] :
         {std::tuple{kProtocols, &ReOrderProtocal}, std::tuple{kNameSpaces, &ReOrderNameSpace}}) {
        reorder();
        EXPECT_EQ(registry.valueNames(kMachine, catalog),
                  std::vector<std::string>{"Num_Catalog_Entries"});
        EXPECT_EQ(Count(catalog), 0u);
        EXPECT_TRUE(EntriesOf(catalog).empty());
    }
}

TEST_F(LspTest, RealPathCutsBehindTheFirstDotAndExpandsTheFirstMatchingVariable) {
    files.addFile("C:\\Program Files\\Long Provider.dll", "");
    const std::string shortName = files.shortPath("C:\\Program Files\\Long Provider.dll");
    system.setEnvironment("OldWinDirSaved", "D:\\old");
    system.setEnvironment("windir", "C:\\WINDOWS");
    const std::vector<std::pair<std::string, std::string>> cases = {
        {Packed(kGoodFile, 1), "C:\\WINDOWS\\system32\\mswsock.dll"},
        {"%WINDIR%\\a.dll", "D:\\old\\a.dll"},
        {"%Nowhere%\\a.dll", "\\a.dll"},
        {"C:\\Program Files\\my.app\\x.dll", "C:\\Program Files\\my.app"},
        {"C:\\web\\page.html", "C:\\web\\page.htm"},
        {shortName, "C:\\Program Files\\Long Provider.dll"},
        {"C:\\no dot", ""},
    };
    for (const auto& [text, path] : cases)
        EXPECT_EQ(GetRealPath(text), path) << text;
    EXPECT_NE(ErrorLog().find("Procedure ( GetRealPath ) - Module ( LSP )"), std::string::npos);
}

// An allowed provider matches the lower-cased folder exactly and the file's name in any case.
TEST_F(LspTest, ProvidersNotRecognisedOrAllowedLeaveBothCatalogsUntouched) {
    files.addFile("C:\\Spy.d\\evil.dll", "spy payload");
    Protocol(Entry(1), "C:\\Spy.d\\evil.dll");  // cut short, so not found
    Protocol(Entry(3), "C:\\Gone\\evil.dll");
    registry.addKey(kMachine, kProtocolEntries + Entry(4));  // no item
    Protocol(Entry(5), kBadFile);
    ExclusionRecords().Add({"Anything", "FileSystem", "c:\\spy\\", "EVIL.DLL"});
    NameSpace(Entry(2), kGoodFile);
    registry.setDword(kMachine, kProtocols, "Num_Catalog_Entries", 9);
    EXPECT_EQ(LSPCheck(), VbFalse);
    EXPECT_EQ(EntriesOf(kProtocols),
              (std::vector<std::string>{Entry(1), Entry(3), Entry(4), Entry(5)}));
    EXPECT_EQ(Count(kProtocols), 9u);
    EXPECT_EQ(EntriesOf(kNameSpaces), std::vector<std::string>{Entry(2)});
    EXPECT_FALSE(Count(kNameSpaces));
    ExclusionRecords()[1].ItemLocation = "C:\\Spy\\";
    EXPECT_EQ(LSPCheck(), VbTrue);
}

TEST_F(LspTest, HitsAreLoggedAndOnlyANameSpaceHitIsListed) {
    Protocol(Entry(1), kBadFile);
    NameSpace(Entry(1), kBadFile);
    EXPECT_EQ(LSPCheck(), VbTrue);
    EXPECT_TRUE(EntriesOf(kProtocols).empty());
    EXPECT_TRUE(EntriesOf(kNameSpaces).empty());
    ASSERT_EQ(ScumListOfRun().count(), 1);
    EXPECT_EQ(ScumListOfRun().row(1).name + " " + ScumListOfRun().row(1).location,
              "SpyThreat c:\\spy\\");
    // The two deletes pass "Delete", which the log does not know, and write nothing.
    const std::vector<std::string> records = LoggedRecords();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_NE(records[0].find("Winsock provider: c:\\spy\\ : ProtocalProvider: evil.dll\r\n"
                              "Threat name: NewDotNet"),
              std::string::npos);
    EXPECT_NE(records[1].find("Threat found: c:\\spy\\evil.dll"), std::string::npos);
    EXPECT_NE(records[2].find("Winsock provider: c:\\spy\\ : NameSpace: evil.dll"),
              std::string::npos);
}

}  // namespace
}  // namespace orvex
