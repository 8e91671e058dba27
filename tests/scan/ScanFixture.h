// ScanFixture.h: the base of the scan driver and file scan tests: a memory machine with
// definitions compiled from a plain source, a scripted user and fresh forms and findings.
#pragma once

#include <string>
#include <vector>

#include "core/AppState.h"
#include "definitions/DefinitionCompiler.h"
#include "definitions/DefinitionLoader.h"
#include "definitions/DefinitionTables.h"
#include "scan/Recorder.h"
#include "stores/AllowedItems.h"
#include "support/MemoryFixture.h"
#include "ui/Form.h"
#include "ui/HeadlessHost.h"

namespace orvex::testing {

class ScanTest : public MemoryPlatformTest {
  protected:
    ScanTest() : installedHost_(host) {
        App().AppPath = "C:\\Program Files\\Orvex";
        App().DataFolder = "C:\\Data\\";
        files.addFolder("C:\\Program Files\\Orvex");
        files.addFolder("C:\\Data");
    }
    // Compiles `source` into the data folder and loads it as start-up does.
    void LoadDefinitions(const std::string& source) {
        files.addFile("C:\\Data\\ovsdef.dat", CompileDefinitionSource(source));
        LoadReferenceFiles();
        ui::ResetForms();
    }

    static std::vector<ScumRow> Rows() { return {ScumListOfRun().begin(), ScumListOfRun().end()}; }

    ui::HeadlessHost host;

  private:
    ui::ScopedHost installedHost_;
};

}  // namespace orvex::testing
