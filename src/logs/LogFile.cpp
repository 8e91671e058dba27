// LogFile.cpp: the place, key and reader of Logged.txt.
#include "logs/LogFile.h"

#include "core/AppState.h"
#include "core/TextFile.h"
#include "definitions/Cipher.h"

namespace orvex {

std::string LoggedTxtPath() {
    return App().AppPath + "\\Logged.txt";
}

std::string LogKey() {
    std::string key = "Ov";
    key += "sLo";
    key += "gKey";
    return key;
}

void ReadScanLog(const std::string& path, const std::function<void(const std::string&)>& onRecord) {
    TextFile file = TextFile::ForInput(path);
    const std::string key = LogKey();
    std::string record, plain;
    while (!file.Eof()) {
        record = file.Input();
        Decrypt(record, key, plain);
        onRecord(plain);
    }
    file.Close();
}

}  // namespace orvex
