// Language.h: the language table's load at start, and the INI value read and write that
// the language files and LangSetting.ini go through.
#pragma once

#include <cstdint>
#include <string>

namespace orvex {

namespace ui {
class Form;
}

// Files of this size or more are scanned line by line: the profile call does not cope
// with them.
inline constexpr std::uint64_t kProfileFileLimit = 64001;

// The current language: the file name of its .lng file without the extension. Empty at
// start; the load at start reads it from LangSetting.ini when it is still empty.
std::string& CurrentLanguage();

// The application folder with one closing backslash.
std::string LanguageFolder();

// Fills LngArray from the [Strings] section of the current language's file. A missing
// file leaves the table as it is; every failure is passed over.
void LoadLanguageAtStart();

// The value of `key`, "" when there is none or the file cannot be read. Small files go
// through the profile call (at most 511 characters); large ones are scanned for the
// first line that starts with the key, whatever its section.
std::string ReadLanguageValue(const std::string& file, const std::string& section,
                              const std::string& key);

// LangSetting.ini in the program folder, where the chosen language is kept.
std::string LanguageSettingsFile();

// Applies the current language's file to a loaded form: a caption the form has and its Tag
// take the file's values (even empty ones); a control's caption, tooltip and tag only a
// value the file has. Failures are passed over.
void LoadFormLanguage(ui::Form& form);

// Writes the value through the profile call; failures are passed over.
void WriteLanguageValue(const std::string& section, const std::string& key,
                        const std::string& value, const std::string& file);

}  // namespace orvex
