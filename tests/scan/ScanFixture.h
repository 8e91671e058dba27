// ScanFixture.h: the base of the scan tests: a memory machine with the program and data
// folders, definitions compiled from a plain source, and the findings as text.
#pragma once

#include <string>
#include <vector>

#include "core/AppState.h"
#include "definitions/DefinitionCompiler.h"
#include "definitions/DefinitionLoader.h"
#include "definitions/DefinitionTables.h"
#include "scan/Recorder.h"
#include "support/MemoryFixture.h"
#include "ui/Form.h"

namespace orvex::testing {

class ScanTest : public MemoryPlatformTest {
  protected:
    ScanTest() {
        App().AppPath = "C:\\Program Files\\Orvex";
        App().DataFolder = "C:\\Data\\";
        files.addFolder("C:\\Program Files\\Orvex");
        files.addFolder("C:\\Data");
    }
    // Compiles `source` into the data folder and loads it as start-up does.
    void LoadDefinitions(const std::string& source) {
        files.addFile("C:\\Data\\ovsdef.dat", CompileDefinitionSource(source));
        LoadReferenceFiles();
        ui::ResetForms();  // the load shows its outcome on frmmain
    }

    static const ScumList& Rows() { return ScumListOfRun(); }
    // Each finding as "name|category|level|location|item".
    static std::vector<std::string> Findings() {
        std::vector<std::string> out;
        for (const ScumRow& r : ScumListOfRun())
            out.push_back(r.name + "|" + r.category + "|" + r.level + "|" + r.location + "|" +
                          r.item);
        return out;
    }
};

}  // namespace orvex::testing
