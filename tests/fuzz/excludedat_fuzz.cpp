// excludedat_fuzz.cpp: arbitrary bytes as Exclude.dat, through the loader, frmexclude's
// load and a removal that rewrites the store, on the memory back-end.
#include "FuzzSetup.h"
#include "pages/ExcludePage.h"
#include "stores/AllowedItems.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    FreshInput().addFile(kFolder + "\\Exclude.dat", Bytes(data, size));
    orvex::FrmExclude& form = orvex::frmexclude();  // LoadExclusion, DisplayExclusions, LoadData
    // Take every other threat off the list, which rewrites the store and reads it back.
    for (std::size_t i = 0; i < form.lvE1.ListItems.size(); i += 2)
        form.lvE1.ListItems[i].Selected = true;
    form.Image2_MouseDown(1);
    orvex::WriteExclusions();
    return 0;
}
