// winsock_fuzz.cpp: arbitrary bytes as Winsock catalog entries, split at each 0xFF byte
// into protocol packed items and name-space values, through LSPCheck on the memory
// back-end. The first protocol entry names a listed file, so that every input is repaired.
#include <algorithm>

#include "FuzzSetup.h"
#include "definitions/DefinitionTables.h"
#include "platform/Md5.h"
#include "platform/Platform.h"
#include "scan/Lsp.h"

namespace {

using orvex::platform::Hive;
using orvex::platform::RegValue;
namespace regtype = orvex::platform::regtype;

const std::string kParameters = "System\\CurrentControlSet\\Services\\Winsock2\\Parameters";
const std::string kProtocols = kParameters + "\\P\\Catalog_Entries\\";
const std::string kNameSpaces = kParameters + "\\N\\Catalog_Entries\\";
constexpr std::size_t kMaxEntries = 6;

void Write(const std::string& key, const RegValue& value) {
    auto& registry = orvex::platform::Registry();
    registry.createKey(Hive::LocalMachine, key);
    registry.writeValue(Hive::LocalMachine, key, value);
}

void ListSpyFile(orvex::platform::memory::MemoryFileSystem& files) {
    files.addFile("C:\\Spy\\evil.dll", "spy");
    const std::string hash = orvex::platform::Md5Hex("spy");
    auto& index = orvex::Definitions().Md5Index;
    index.Items = {{}, {"Spy", static_cast<std::int16_t>(hash[0]), hash}};
    index.Count = 1;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    ListSpyFile(FreshInput());
    Write(kParameters, {"Current_Protocol_Catalog", regtype::kSz, "P"});
    Write(kParameters, {"Current_NameSpace_Catalog", regtype::kSz, "N"});
    Write(kProtocols + "a", {"PackedCatalogItem", regtype::kBinary, "C:\\Spy\\evil.dll"});
    const std::string input = Bytes(data, size);
    std::size_t start = 0;
    for (std::size_t n = 0; n < kMaxEntries && start <= input.size(); ++n) {
        const std::size_t end = std::min(input.find('\xff', start), input.size());
        const std::string piece = input.substr(start, end - start);
        start = end + 1;
        const std::string entry = std::to_string(n);
        if (n % 2 == 0) {
            Write(kProtocols + entry, {"PackedCatalogItem", regtype::kBinary, piece});
        } else {
            Write(kNameSpaces + entry, {"LibraryPath", regtype::kSz, piece});
            Write(kNameSpaces + entry, {piece, regtype::kBinary, piece});
        }
    }
    orvex::LSPCheck();
    return 0;
}
