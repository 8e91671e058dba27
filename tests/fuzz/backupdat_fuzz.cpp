// backupdat_fuzz.cpp: arbitrary bytes as Backup.Dat, through the loader and a rewrite of
// what it read, on the memory back-end.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/AppState.h"
#include "platform/memory/MemoryPlatform.h"
#include "removal/BackupStore.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace {

const std::string kStore = "C:\\Orvex\\Backup.Dat";

orvex::platform::memory::MemoryPlatform& Machine() {
    static orvex::platform::memory::MemoryPlatform machine;
    static orvex::platform::ScopedPlatform installed{machine.view()};
    return machine;
}

class Holder : public orvex::ui::Form {
  public:
    Holder() : Form("frmblocked") {}
    orvex::ui::ListView lvBackup{*this, "lvBackup"};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& machine = Machine();
    orvex::App().AppPath = "C:\\Orvex";
    orvex::App().DataFolder = "C:\\Orvex\\";  // the error log of short lines lands here
    machine.files.addFile(kStore, std::string(reinterpret_cast<const char*>(data), size));

    orvex::LoadBackupDat();
    Holder& holder = orvex::ui::TheForm<Holder>();
    holder.lvBackup.ListItems.clear();
    for (const orvex::BackupRecord& r : orvex::BackupRecords()) {
        orvex::ui::ListItem row;
        row.Text = r.BackupDate;
        row.SubItems = {r.BackupKind,  r.OldLocation, r.OldName,
                        r.NewLocation, r.NewName,     r.ThreatName};
        holder.lvBackup.ListItems.push_back(std::move(row));
    }
    orvex::SaveBackupDat(holder.lvBackup, orvex::VbTrue);
    return 0;
}
