// ProcessState.cpp: every process-wide store, reset in one place.
#include "app/ProcessState.h"

#include <string>

#include "core/AppState.h"
#include "core/Rnd.h"
#include "definitions/DefinitionTables.h"
#include "pages/PageReports.h"
#include "platform/Platform.h"
#include "scan/Lsp.h"
#include "scan/Recorder.h"
#include "stores/AllowedItems.h"
#include "stores/BackupStore.h"
#include "ui/Form.h"
#include "ui/FormScaling.h"
#include "ui/Language.h"
#include "ui/UiHost.h"

namespace orvex {

void ResetProcessState() {
    ui::ResetForms();
    ui::ScalingRecordsOfRun() = ui::ScalingRecords{};
    ui::ResetHost();
    platform::UninstallPlatform();
    App() = AppState{};
    // Emptied in place: a fresh table would build and drop a temporary of 1301 strings.
    for (std::string& text : LngArray())
        text.clear();
    CurrentLanguage().clear();
    ProcessGenerator() = Generator{};
    Definitions() = DefinitionTables{};
    ScumListOfRun().clear();
    List1OfRun().Clear();
    ProtocolProviders() = ProviderTable{};
    NameSpaceProviders() = ProviderTable{};
    ExclusionRecords() = ExclusionTable{};
    BackupRecords() = BackupTable{};
    BackupFolderCountOfRun() = BackupFolderCount{};
    InstallPageReports();
}

}  // namespace orvex
