// backupdat_fuzz.cpp: arbitrary bytes as Backup.Dat, through the loader and a rewrite of
// what it read, on the memory back-end.
#include "FuzzSetup.h"
#include "stores/BackupStore.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace {

class Holder : public orvex::ui::Form {
  public:
    Holder() : Form("frmblocked") {}
    orvex::ui::ListView lvBackup{*this, "lvBackup"};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    FreshInput().addFile(kFolder + "\\Backup.Dat", FirstLines(Bytes(data, size), 8));

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
