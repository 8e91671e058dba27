// AppState.h: the process-wide variables the windows hand each other. Each has one
// writer; every flag is a 16-bit boolean (true -1, false 0).
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "core/Vb.h"
#include "platform/System.h"

namespace orvex {

inline constexpr int kLngCount = 1301;

struct AppState {
    // Paths and fixed texts, set once by Main.
    std::string AppPath;       // folder of the executable, no trailing backslash
    std::string BackupFolder;  // AppPath + "\Backup"
    std::string DataFolder;    // registry value DataPath + "\"
    std::string WindowsFolder;
    std::string SystemFolder;
    std::string UpdateBaseUrl;

    // Start-up flags and measures.
    VbBool QuietMode = VbFalse;
    VbBool ScanOnStart = VbFalse;
    VbBool TestMode = VbFalse;
    std::int32_t ScreenDpi = 0;
    VbBool HighDpi = VbFalse;
    std::int32_t WindowLeft = 0;     // twips
    std::int32_t WindowCentreY = 0;  // twips
    platform::MutexHandle SingleInstanceMutex = 0;

    // Scan and review state.
    VbBool ScanRunning = VbFalse;
    VbBool StopRequested = VbFalse;
    VbBool ScanStopped = VbFalse;
    std::int32_t ItemsScanned = 0;
    std::int32_t ScumCount = 0;
    std::int32_t ThreatCount = 0;
    VbBool Navigating = VbFalse;
    VbBool UpdateCancelled = VbFalse;
    VbBool RemovalCancelled = VbFalse;
    VbBool RemovalActive = VbFalse;
    VbBool RestartNeeded = VbFalse;
    VbBool BackupEnabled = VbFalse;  // back up each row before removing it
    std::int32_t RemovalTotal = 0;   // checked rows that advance the removal bar

    // Definition data shown in logs and windows.
    std::string DefinitionDate;
    std::string StaticDefinitionVer;
};

// The one instance; tests reset it with `App() = AppState{}`.
AppState& App();

// Every message of the interface is LngArray[n]; filled by the language load at start.
// Entries never set are empty.
using LanguageTable = std::array<std::string, kLngCount>;
LanguageTable& LngArray();

// LngArray entry n; failure 9 (subscript out of range) outside 0..1300.
const std::string& Lng(int n);

// Releases the single-instance marker that start-up took; every exit after start-up calls it.
void ReleaseSingleInstanceMutex();

}  // namespace orvex
