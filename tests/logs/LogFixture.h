// LogFixture.h: the test base of the log tests: the memory back-end, the program folder
// "C:\Orvex" and the English language file loaded into LngArray.
#pragma once

#include <string>
#include <vector>

#include "core/AppState.h"
#include "core/Text.h"
#include "definitions/Cipher.h"
#include "definitions/DefinitionTables.h"
#include "scan/Recorder.h"
#include "stores/AllowedItems.h"
#include "support/MemoryFixture.h"
#include "support/SourceFile.h"
#include "ui/Language.h"

namespace orvex::testing {

class LogTest : public MemoryPlatformTest {
  protected:
    static constexpr const char* kFolder = "C:\\Orvex";
    static constexpr const char* kLoggedTxt = "C:\\Orvex\\Logged.txt";
    static constexpr const char* kErrorLog = "C:\\Orvex\\Data\\ovs.ph";
    // The log's key as the tests know it, independent of how the program builds it.
    static constexpr const char* kExpectedKey = "OvsLogKey";

    LogTest() {
        App().AppPath = kFolder;
        App().DataFolder = std::string(kFolder) + "\\Data\\";
        files.addFolder(App().DataFolder);
        LoadEnglish();
    }

    void LoadEnglish() {
        const std::string english = ReadSourceFile("lang/English.lng");
        ASSERT_FALSE(english.empty());
        files.addFile(std::string(kFolder) + "\\English.lng", english);
        CurrentLanguage() = "English";
        LoadLanguageAtStart();
    }

    // Each line of Logged.txt, deciphered under the expected key.
    std::vector<std::string> LoggedRecords() {
        std::vector<std::string> records;
        if (!files.exists(kLoggedTxt)) return records;
        for (std::string line : Split(files.contents(kLoggedTxt), "\r\n")) {
            if (!line.empty()) records.push_back(Decrypt(line, kExpectedKey));
        }
        return records;
    }

    static std::string Stored(std::string plain) { return Encrypt(plain, kExpectedKey); }
};

}  // namespace orvex::testing
