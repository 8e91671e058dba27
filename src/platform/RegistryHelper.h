// RegistryHelper.h: the registry access object of the scans, removal and start-up.
// A routine makes its own, selects a root and a key, and works below it. The text forms
// that the scans split ("data|valueName", "name|data|type", binary as "12,0,255,", subkey
// items with a "|" and their last write time behind it) are made here and nowhere else.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace orvex::platform {

class RegistryHelper {
  public:
    RegistryHelper();  // on the installed back-end
    explicit RegistryHelper(RegistryBackend& backend);

    void RootKey(Hive hive) { hive_ = hive; }
    Hive RootKey() const { return hive_; }
    void KeyPath(std::string path) { path_ = std::move(path); }
    const std::string& KeyPath() const { return path_; }
    // A subkey of the selected key that KeyExists looks at; std::nullopt clears it.
    void SubKey(std::optional<std::string> name) { subKey_ = std::move(name); }

    bool KeyExists();
    // Below the selected key; an empty name in DeleteKey deletes the selected key itself,
    // with everything under it. Status 0 is success, 2 "not there".
    long CreateKey(const std::string& name);
    long DeleteKey(const std::string& name);
    long DeleteValue(const std::string& name);

    // Subkey items as "name|lastWriteTime"; a scan takes the text before the first "|".
    std::vector<std::string> EnumerateKeys(Hive hive, const std::string& path);
    std::vector<std::string> EnumerateValues(Hive hive, const std::string& path);
    // One "data|valueName" item per value.
    std::vector<std::string> EnumerateValueData(Hive hive, const std::string& path);
    // One "name|data|type" item per value, type in decimal.
    std::vector<std::string> EnumerateAllValues(Hive hive, const std::string& path);

    // The data of a value of the selected key, or `defaultValue` when it cannot be read.
    // Texts come back as they stand, a DWORD or QWORD as its decimal text. Binary data
    // comes back with `binaryAsText` as a text of one character per byte (the Winsock
    // reader finds the provider's path at the start of it), else as the raw bytes; both
    // are the same bytes here, the flag says what the caller means to do with them.
    std::string GetValue(const std::string& name, const std::string& defaultValue = "",
                         bool binaryAsText = true);
    // Writes a value of the selected key, creating the key when missing. REG_SZ,
    // REG_EXPAND_SZ and REG_MULTI_SZ take the text, REG_DWORD and REG_QWORD a decimal text
    // (a negative one wraps, as a 32-bit Long does), every other type the raw bytes.
    // False when the key cannot be made, the number is not one, or the write fails.
    bool SetValue(const std::string& name, const std::string& data,
                  std::uint32_t type = regtype::kSz);

    // Writes the key `keyPath` of `hive` with everything below it to `file` on the
    // installed FileSystem, as a REGEDIT4 export (platform/RegFile.h) that regedit can
    // import too. False when the key is missing, the file already exists (as RegSaveKey
    // refuses to overwrite), a name cannot be written in that format or the file cannot.
    bool SaveKey(Hive hive, const std::string& keyPath, const std::string& file);
    // Brings back a REGEDIT4 file as the key `keyPath` of `hive`: its first key becomes
    // `keyPath`, the others keep their place below it. The key is created when missing and
    // ends up holding exactly the saved subkeys and values. False, with nothing changed,
    // when the file is missing or malformed or holds a key outside its first one.
    bool RestoreKey(const std::string& file, Hive hive, const std::string& keyPath);

    // The text form of a value's data in the enumerations: texts as they stand, DWORD and
    // QWORD in decimal, every other type as "12,0,255,".
    static std::string DataText(const RegValue& value);
    // "12,0,255," and back. Rebuilding reads as the catalog repair does: one byte per ",",
    // the digits gathered before each; digits after the last "," are dropped, so a text
    // without its final "," loses its last byte. std::nullopt for a piece that is no number
    // from 0 to 255.
    static std::string BinaryText(const std::string& bytes);
    static std::optional<std::string> BinaryFromText(const std::string& text);

    // The root's name ("HKEY_LOCAL_MACHINE"), empty for HKEY_PERFORMANCE_DATA.
    static std::string HiveName(Hive hive);
    // The root of one of those six names, exactly as written; std::nullopt for any other.
    static std::optional<Hive> HiveOfName(std::string_view name);

  private:
    std::string selectedPath() const;

    RegistryBackend& backend_;
    Hive hive_ = Hive::LocalMachine;
    std::string path_;
    std::optional<std::string> subKey_;
};

}  // namespace orvex::platform
