// Language.cpp: the language table's load at start, a form's language load, and the INI
// value read and write.
#include "ui/Language.h"

#include <optional>
#include <string_view>
#include <utility>

#include "core/AppState.h"
#include "core/Convert.h"
#include "core/TextFile.h"
#include "platform/Failure.h"
#include "platform/Platform.h"
#include "ui/Form.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr std::size_t kProfileCapacity = 512;
constexpr std::string_view kStringsSection = "[Strings]";
constexpr std::string_view kSettingsFile = "LangSetting.ini";

std::string CutAtNul(const std::string& text) {
    return text.substr(0, text.find('\0'));
}

// Both read routines pass over failures, so a file that cannot be read simply reads as
// empty, and a language file that breaks off keeps what was loaded before the break.
template <class F>
void PassOver(F&& statement) {
    try {
        statement();
    } catch (const Failure&) {
    } catch (const std::bad_alloc&) {
    }
}

std::optional<std::uint64_t> FileLength(const std::string& file) {
    std::optional<std::uint64_t> length;
    PassOver([&] { length = platform::Files().length(file); });
    return length;
}

std::string ProfileValue(const std::string& file, const std::string& section,
                         const std::string& key) {
    return CutAtNul(platform::Sys().readProfileString(section, key, "", kProfileCapacity, file));
}

// The value starts two characters after the key (room for a blank and "="), and its last
// two characters are cut; a value too short for the cut reads as "".
std::string ValueAfterKey(const std::string& line, const std::string& key) {
    const std::size_t start = key.size() + 2;
    if (line.size() < start + 2) return "";
    return line.substr(start, line.size() - start - 2);
}

std::string ScannedValue(const std::string& file, const std::string& key) {
    TextFile in = TextFile::ForInput(file);
    while (!in.Eof()) {
        const std::string line = in.LineInput();
        if (line.starts_with(key)) return ValueAfterKey(line, key);
    }
    return "";
}

// One line of [Strings]: "index=text". An index that is no number keeps the previous
// one, so its text overwrites the previous entry; indexes past the table are skipped.
void StoreStringLine(const std::string& line, std::int16_t& index) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) return;
    PassOver([&] { index = CInt(std::string_view(line).substr(0, equals)); });
    if (index < 0 || index >= kLngCount) return;
    const std::size_t next = line.find('=', equals + 1);
    const std::size_t length = next == std::string::npos ? std::string::npos : next - equals - 1;
    LngArray()[static_cast<std::size_t>(index)] = line.substr(equals + 1, length);
}

void ReadStrings(TextFile& in) {
    bool reading = false;
    std::int16_t index = 0;
    while (!in.Eof()) {
        const std::string line = in.LineInput();
        if (line == kStringsSection) reading = true;  // nothing turns it off again
        if (reading) StoreStringLine(line, index);
    }
}

}  // namespace

std::string& CurrentLanguage() {
    static std::string language;
    return language;
}

std::string LanguageFolder() {
    std::string folder = App().AppPath;
    if (!folder.ends_with('\\')) folder += '\\';
    return folder;
}

void LoadLanguageAtStart() {
    const std::string folder = LanguageFolder();
    if (CurrentLanguage().empty())
        CurrentLanguage() =
            ReadLanguageValue(folder + std::string(kSettingsFile), "Language", "CurrentLanguage");
    const std::string file = folder + CurrentLanguage() + ".lng";
    PassOver([&] {
        if (!platform::Files().fileExists(file)) return;
        TextFile in = TextFile::ForInput(file);
        ReadStrings(in);
        in.Close();
    });
}

std::string ReadLanguageValue(const std::string& file, const std::string& section,
                              const std::string& key) {
    std::string value;
    PassOver([&] {
        // A length that cannot be taken falls to the profile call, which finds nothing.
        const auto length = FileLength(file);
        value = length && *length >= kProfileFileLimit ? ScannedValue(file, key)
                                                       : ProfileValue(file, section, key);
    });
    return value;
}

std::string LanguageSettingsFile() {
    return LanguageFolder() + std::string(kSettingsFile);
}

void LoadFormLanguage(ui::Form& form) {
    const std::string file = LanguageFolder() + CurrentLanguage() + ".lng";
    const std::string& section = form.Name;
    if (!form.Caption.empty())
        form.Caption = ReadLanguageValue(file, section, section + ".Caption");
    form.Tag = ReadLanguageValue(file, section, section + ".Tag");
    for (ui::Control* control : form.Controls()) {
        const std::string key = control->IsArrayElement()
                                    ? control->Name + "(" + std::to_string(control->Index) + ")"
                                    : control->Name;
        for (const auto& [suffix, property] : {std::pair(".Caption", &ui::Control::Caption),
                                               {".ToolTipText", &ui::Control::ToolTipText},
                                               {".Tag", &ui::Control::Tag}}) {
            std::string value = ReadLanguageValue(file, section, key + suffix);
            if (!value.empty()) control->*property = std::move(value);
        }
        ui::DoEvents();
    }
}

void WriteLanguageValue(const std::string& section, const std::string& key,
                        const std::string& value, const std::string& file) {
    PassOver([&] { platform::Sys().writeProfileString(section, key, value, file); });
}

}  // namespace orvex
