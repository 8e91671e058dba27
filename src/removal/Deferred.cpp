// Deferred.cpp: WipeFile with its handling of a file in use, the WININIT.INI line of the
// 9x family, and the session's end.
#include "removal/Deferred.h"

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/TextFile.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "scan/RunProc.h"

namespace orvex {
namespace {

const std::string kModule = "Module1";

// One byte per started 4096 bytes of the file is overwritten, at the start of the file:
// enough to spoil the header of a program, and quick.
constexpr std::uint64_t kBytesPerOverwrite = 4096;
constexpr char kFirstPattern = '\x55';
constexpr char kSecondPattern = '\xAA';

void OverwriteStart(const std::string& path) {
    TextFile file = TextFile::ForBinary(path);
    const std::uint64_t count = file.Lof() / kBytesPerOverwrite + 1;
    // Each pass writes the first pattern where the position stands, then the second over
    // it, which leaves the position one byte further on.
    for (std::uint64_t position = 1; position <= count; ++position) {
        file.Put({&kFirstPattern, 1});
        file.Seek(position);
        file.Put({&kSecondPattern, 1});
    }
    file.Close();
}

void DestroyFile(const std::string& path) {
    platform::FileHelper files;
    files.ClearAttributes(path);
    OverwriteStart(path);
    if (files.FileExists(path)) {
        files.ClearAttributes(path);
        platform::Files().remove(path);
    }
}

// The handling of a file that could not be destroyed: true when the system deletes it at
// its next start and the caller may count it as gone.
bool DeleteAtNextStart(const std::string& path) {
    switch (clsRunProc().OS()) {
        case oskind::kNt4:
        case oskind::kNt5: {
            platform::FileHelper().ClearAttributes(path);
            const bool queued = platform::Sys().moveFileAtRestart(
                path, "",
                platform::movefile::kReplaceExisting | platform::movefile::kDelayUntilReboot);
            RetrieveError();
            if (!queued) RetrieveError();
            App().RestartNeeded = VbTrue;
            return true;
        }
        case oskind::kWin95:
        case oskind::kWin9x:
            Create9xReboot(path, "NUL");
            App().RestartNeeded = VbTrue;
            // Queued, yet reported as not done: the row stays for the user to see.
            return false;
        default:
            return false;
    }
}

// Copies WININIT.INI field by field, as the delimited read gives them, and puts the new
// line at the end of the copy, in whatever section comes last.
void CopyWithLineAdded(const std::string& ini, const std::string& copy, const std::string& line) {
    TextFile input = TextFile::ForInput(ini);
    TextFile output = TextFile::ForOutput(copy);
    while (!input.Eof())
        output.Print(input.Input());
    output.Print(line);
    input.Close();
    output.Close();
}

void WriteNewIni(const std::string& ini, const std::string& line) {
    TextFile output = TextFile::ForOutput(ini);
    output.Print("[rename]");
    output.Print(line);
    output.Close();
}

}  // namespace

bool WipeFile(const std::string& path) {
    try {
        DestroyFile(path);
        return true;
    } catch (const Failure&) {
        return DeleteAtNextStart(path);
    }
}

void Create9xReboot(const std::string& source, const std::string& destination) {
    Procedure proc(kModule, "Create9xReboot");
    proc.Run([&] {
        platform::FileHelper files;
        const std::string line = files.ShortName(destination) + "=" + files.ShortName(source);
        const std::string windir = platform::Sys().windowsFolder();
        const std::string ini = windir + "\\WININIT.INI";
        const std::string copy = windir + "\\WININIT.TEMP";
        if (files.FileExists(ini))
            proc.Step([&] { CopyWithLineAdded(ini, copy, line); });
        else
            proc.Step([&] { WriteNewIni(ini, line); });
        // Also after a new file was written: then the copy is missing and this fails, or an
        // old copy lying there takes the new file's place. The copy is never deleted.
        proc.Step([&] { platform::Files().copy(copy, ini, true); });
    });
}

void RetrieveError() {
    platform::Sys().lastErrorText();
}

void AdjustToken() {
    Procedure proc(kModule, "AdjustToken");
    proc.Run([&] { platform::Sys().enableShutdownPrivilege(); });
}

void ExitWindows(std::int32_t flags) {
    Procedure proc(kModule, "ExitWindows");
    proc.Run([&] {
        AdjustToken();
        platform::Sys().exitWindows(static_cast<std::uint32_t>(flags) |
                                    platform::exitwindows::kForce);
    });
}

}  // namespace orvex
