// PosixRegistry.h: the registry of a system that has none: an in-memory registry kept in
// a JSON file, loaded at start and saved after every change.
#pragma once

#include <memory>
#include <string>

#include "platform/Registry.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform {

// $ORVEX_REGISTRY, else $HOME/.orvex/registry.json; empty when neither can be found.
std::string DefaultRegistryPath();

class PosixRegistry : public RegistryBackend {
  public:
    // A missing file starts an empty registry; an unreadable one too, with a message on
    // stderr, and is kept beside as "<file>.corrupt". An empty path keeps nothing on disk.
    explicit PosixRegistry(std::string file = DefaultRegistryPath());

    bool keyExists(Hive hive, std::string_view path) override;
    long createKey(Hive hive, std::string_view path) override;
    long deleteTree(Hive hive, std::string_view path) override;
    long listSubKeys(Hive hive, std::string_view path, std::vector<RegSubKey>& out) override;
    long listValues(Hive hive, std::string_view path, std::vector<RegValue>& out) override;
    long readValue(Hive hive, std::string_view path, std::string_view name, RegValue& out) override;
    long writeValue(Hive hive, std::string_view path, const RegValue& value) override;
    long deleteValue(Hive hive, std::string_view path, std::string_view name) override;

    const std::string& file() const { return file_; }

  private:
    void load();
    void save();
    long saved(long status);
    void stampNow();

    std::string file_;
    std::unique_ptr<memory::MemoryRegistry> tree_;
    bool warnedSave_ = false;
};

}  // namespace orvex::platform
