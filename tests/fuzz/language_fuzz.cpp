// language_fuzz.cpp: arbitrary bytes as a language file, through the load at start and the
// value read of both paths, on the memory back-end.
#include "FuzzSetup.h"
#include "ui/Language.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    const std::string file = kFolder + "\\Fuzz.lng";
    std::string bytes = Bytes(data, size);
    // A leading 'L' puts the file past the profile limit, so the line scan runs too.
    if (!bytes.empty() && bytes[0] == 'L')
        bytes = ";" + std::string(orvex::kProfileFileLimit, 'p') + "\r\n" + bytes;
    FreshInput().addFile(file, bytes);
    orvex::CurrentLanguage() = "Fuzz";
    orvex::LoadLanguageAtStart();
    orvex::ReadLanguageValue(file, "Strings", "1");
    orvex::ReadLanguageValue(file, "frmmain", "frmmain.Caption");
    return 0;
}
