// excludedat_fuzz.cpp: arbitrary bytes as Exclude.dat, through the loader, frmexclude's
// load and a removal that rewrites the store, on the memory back-end.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/AppState.h"
#include "platform/memory/MemoryPlatform.h"
#include "review/AllowedItems.h"
#include "review/ExcludePage.h"
#include "ui/Form.h"

namespace {

const std::string kStore = "C:\\Orvex\\Exclude.dat";

orvex::platform::memory::MemoryPlatform& Machine() {
    static orvex::platform::memory::MemoryPlatform machine;
    static orvex::platform::ScopedPlatform installed{machine.view()};
    return machine;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& machine = Machine();
    orvex::App().AppPath = "C:\\Orvex";
    orvex::App().DataFolder = "C:\\Orvex\\";
    machine.files.addFile(kStore, std::string(reinterpret_cast<const char*>(data), size));

    orvex::ui::ResetForms();
    orvex::FrmExclude& form = orvex::frmexclude();  // LoadExclusion, DisplayExclusions, LoadData
    // Take every other threat off the list, which rewrites the store and reads it back.
    for (std::size_t i = 0; i < form.lvE1.ListItems.size(); i += 2)
        form.lvE1.ListItems[i].Selected = true;
    form.Image2_MouseDown(1);
    orvex::WriteExclusions();
    return 0;
}
