// MemoryPlatform.h: the in-memory back-end of the platform boundary. Tests script a
// registry, a Windows-style file system, a process table and the system services, then
// install it with ScopedPlatform; everything is deterministic and nothing touches the host.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Failure.h"
#include "platform/Platform.h"

namespace orvex::platform::memory {

// ---------------------------------------------------------------------------------------
// Registry: one tree per hive. Names compare without regard to case and keep the spelling
// they were created with; subkeys and values enumerate in creation order.
class MemoryRegistry : public RegistryBackend {
  public:
    MemoryRegistry();
    ~MemoryRegistry() override;

    bool keyExists(Hive hive, std::string_view path) override;
    long createKey(Hive hive, std::string_view path) override;
    long deleteTree(Hive hive, std::string_view path) override;
    long listSubKeys(Hive hive, std::string_view path, std::vector<RegSubKey>& out) override;
    long listValues(Hive hive, std::string_view path, std::vector<RegValue>& out) override;
    long readValue(Hive hive, std::string_view path, std::string_view name, RegValue& out) override;
    long writeValue(Hive hive, std::string_view path, const RegValue& value) override;
    long deleteValue(Hive hive, std::string_view path, std::string_view name) override;

    // Scripting. Every setter creates the key and its parents when missing.
    void addKey(Hive hive, std::string_view path);
    void setString(Hive hive, std::string_view path, std::string_view name, std::string_view text);
    void setExpandString(Hive hive, std::string_view path, std::string_view name,
                         std::string_view text);
    void setDword(Hive hive, std::string_view path, std::string_view name, std::uint32_t value);
    void setBinary(Hive hive, std::string_view path, std::string_view name, std::string_view bytes);
    void setValue(Hive hive, std::string_view path, std::string_view name, std::uint32_t type,
                  std::string_view data);
    void removeKey(Hive hive, std::string_view path);

    // Inspection.
    bool hasKey(Hive hive, std::string_view path) { return keyExists(hive, path); }
    bool hasValue(Hive hive, std::string_view path, std::string_view name);
    std::optional<RegValue> value(Hive hive, std::string_view path, std::string_view name);
    // The data of a value as stored (text without NUL, raw bytes otherwise).
    std::optional<std::string> data(Hive hive, std::string_view path, std::string_view name);
    std::optional<std::uint32_t> dword(Hive hive, std::string_view path, std::string_view name);
    std::vector<std::string> subKeyNames(Hive hive, std::string_view path);
    std::vector<std::string> valueNames(Hive hive, std::string_view path);

    // The last-write text that keys get when they are created or changed from now on.
    void setTimestamp(std::string text) { timestamp_ = std::move(text); }
    void setLastWrite(Hive hive, std::string_view path, std::string text);
    // Makes a key and everything below it refuse changes with status 5 (access denied).
    void denyWrites(Hive hive, std::string_view path, bool deny = true);

    struct Key;

  private:
    Key* find(Hive hive, std::string_view path);
    Key* make(Hive hive, std::string_view path);
    Key& require(Hive hive, std::string_view path);

    std::vector<std::unique_ptr<Key>> roots_;
    std::string timestamp_ = "1/1/2026 12:00:00 AM";
};

// ---------------------------------------------------------------------------------------
// File system: drives with folders and files, Windows paths ("C:\a\b.txt", "/" accepted
// too), names compared without regard to case and kept as spelled, 8.3 short names made
// for long names as NTFS makes them. Failures are the classic numbers: 53 missing file,
// 76 missing folder or drive, 71 drive not ready, 70 locked file, 75 read-only file or
// folder in the way, 58 copy onto an existing file, 52 bad name, 54 wrong stream mode.
class MemoryFileSystem : public FileSystem {
  public:
    MemoryFileSystem();
    ~MemoryFileSystem() override;

    std::unique_ptr<FileStream> open(std::string_view path, OpenMode mode) override;
    bool fileExists(std::string_view path) override;
    bool folderExists(std::string_view path) override;
    std::vector<std::string> drives() override;
    int driveType(std::string_view root) override;
    std::vector<DirEntry> list(std::string_view folder) override;  // sorted by name
    std::string shortPath(std::string_view path) override;
    std::string longPath(std::string_view path) override;
    std::uint32_t attributes(std::string_view path) override;
    void setAttributes(std::string_view path, std::uint32_t attributes) override;
    std::uint64_t length(std::string_view path) override;
    void copy(std::string_view from, std::string_view to, bool overwrite) override;
    void remove(std::string_view path) override;  // a file, or an empty folder
    void createFolder(std::string_view path) override;
    void replace(std::string_view from, std::string_view to) override;
    std::uint64_t freeSpace(std::string_view root) override;
    std::uint64_t folderStamp(std::string_view folder) override;

    // Scripting. addFile and addFolder create missing parents, and a missing drive as a
    // fixed disk; addFile overwrites an existing file's bytes.
    void addDrive(std::string_view root, int type = drivetype::kFixed,
                  std::uint64_t freeBytes = kDefaultFreeSpace);
    void setDriveReady(std::string_view root, bool ready);  // not ready: failure 71
    void addFolder(std::string_view path);
    void addFile(std::string_view path, std::string_view bytes = "",
                 std::uint32_t attributes = attr::kArchive);
    // A file held open by another program: opening, copying, replacing or deleting it
    // fails with 70.
    void lock(std::string_view path, bool locked = true);
    // A file that can be written but not deleted (as without the right to delete): remove()
    // fails with 75.
    void denyDelete(std::string_view path);
    // The Nth stream write from now (1 = the next) fails with `number`, once; the bytes of
    // that write are not stored. Lets a test break a rewrite half way.
    void failWrite(int nth, int number = failure::kDiskFull);
    std::uint64_t writeCount() const;  // stream writes so far

    // Inspection.
    bool exists(std::string_view path) { return fileExists(path) || folderExists(path); }
    std::string contents(std::string_view path);  // the bytes; 53/76 when missing
    // Every file below a folder (recursively), as full long paths, sorted.
    std::vector<std::string> filesBelow(std::string_view folder);

    static constexpr std::uint64_t kDefaultFreeSpace = 10ull * 1024 * 1024 * 1024;

    struct Node;
    struct Drive;
    struct WriteFaults;

  private:
    struct Located;
    Drive& driveOf(std::string_view path);
    Located locate(std::string_view path);
    Node& requireFile(std::string_view path);
    Node& requireEntry(std::string_view path);
    Node& requireParentFolder(std::string_view path, std::string& leaf);
    Node& newChild(Node& folder, std::string name, bool isFolder);
    void touch(Node& folder);  // the folder's entries changed

    std::map<char, std::unique_ptr<Drive>> drives_;
    std::shared_ptr<WriteFaults> faults_;
    std::uint64_t changes_ = 0;
};

// ---------------------------------------------------------------------------------------
// Processes: a scripted Windows version and process table.
struct StartCall {
    std::string path;
    std::string arguments;
    bool hidden = false;
};

// A library file the machine can load. Its entries return at once with `exitCode`, or after
// `runMilliseconds` when that is set: a wait shorter than that finds the thread running.
struct MemoryComponent {
    std::vector<std::string> exports;  // the names GetProcAddress finds, compared exactly
    std::uint32_t runMilliseconds = 0;
    std::uint32_t exitCode = 0;
};

// What exitThread raises on this back-end: the calling thread has ended with `code`, and
// nothing after the call runs.
struct ThreadExited {
    std::uint32_t code = 0;
};

class MemoryProcesses : public ProcessApi {
  public:
    std::optional<OsVersion> osVersion() override { return os_; }
    std::vector<ProcessEntry> listWithPaths() override;
    std::vector<std::string> listImageNames() override;
    bool terminate(std::uint32_t pid) override;
    std::uint32_t currentProcessId() override { return currentPid_; }
    bool start(std::string_view path, std::string_view arguments, bool hidden) override;

    LibraryHandle loadLibrary(std::string_view path) override;
    EntryAddress entryAddress(LibraryHandle library, std::string_view name) override;
    void freeLibrary(LibraryHandle library) override;
    ThreadHandle startEntryThread(EntryAddress entry) override;  // the entry runs at once
    std::uint32_t waitForThread(ThreadHandle thread, std::uint32_t milliseconds) override;
    std::uint32_t threadExitCode(ThreadHandle thread) override;  // 259 while it runs
    void closeThread(ThreadHandle thread) override;
    [[noreturn]] void exitThread(std::uint32_t code) override;  // raises ThreadExited

    // Default: Windows XP (NT family, 5.1).
    void setOsVersion(std::uint32_t platformId, std::uint32_t major, std::uint32_t minor) {
        os_ = OsVersion{platformId, major, minor};
    }
    void failOsVersion() { os_.reset(); }
    // Adds a process and returns its pid (pids are handed out from 100 in steps of 4 when
    // `pid` is 0). `imageName` defaults to the file part of the path; on the 9x family the
    // snapshot gives full paths, which a test passes here.
    std::uint32_t addProcess(std::string imagePath, std::string imageName = "",
                             std::uint32_t pid = 0);
    void removeProcess(std::uint32_t pid);
    bool running(std::uint32_t pid) const;
    // terminate() of this pid fails and the process stays.
    void protect(std::uint32_t pid, bool isProtected = true);
    void setCurrentProcessId(std::uint32_t pid) { currentPid_ = pid; }
    void setStartResult(bool ok) { startResult_ = ok; }

    const std::vector<StartCall>& startCalls() const { return starts_; }
    const std::vector<std::uint32_t>& terminated() const { return terminated_; }

    // Components: paths compare without regard to case. A path without a component is not
    // loadable, as a text file or a program is not.
    void addComponent(std::string path, MemoryComponent component);
    void failThreadStart(bool fail = true) { failThreadStart_ = fail; }
    // "path|entry" for each entry started on a thread, in order.
    const std::vector<std::string>& entriesRun() const { return entriesRun_; }
    // The paths of the libraries still loaded, once per load not yet freed.
    std::vector<std::string> loadedLibraries() const;
    std::size_t openThreads() const { return threads_.size(); }

  private:
    struct Library {
        std::string path;
        MemoryComponent component;
    };
    struct Entry {
        LibraryHandle library = 0;
        std::string name;
    };
    struct Thread {
        std::uint32_t runMilliseconds = 0;
        std::uint32_t exitCode = 0;
        bool ended = false;
    };
    ThreadHandle newHandle() { return nextHandle_ += 4; }

    struct Process {
        std::uint32_t pid;
        std::string imagePath;
        std::string imageName;
        bool isProtected = false;
    };
    Process* find(std::uint32_t pid);

    std::optional<OsVersion> os_ = OsVersion{2, 5, 1};
    std::vector<Process> table_;
    std::uint32_t nextPid_ = 100;
    std::uint32_t currentPid_ = 4000;
    bool startResult_ = true;
    std::vector<StartCall> starts_;
    std::vector<std::uint32_t> terminated_;
    std::vector<std::pair<std::string, MemoryComponent>> components_;
    std::map<LibraryHandle, Library> libraries_;
    std::map<EntryAddress, Entry> entries_;
    std::map<ThreadHandle, Thread> threads_;
    std::uintptr_t nextHandle_ = 0x7000;
    bool failThreadStart_ = false;
    std::vector<std::string> entriesRun_;
};

// ---------------------------------------------------------------------------------------
// System services.

// The named mutexes of a simulated machine. Two MemorySystems that share one table act as
// two processes: the second sees the first one's mutex. Names are case-sensitive, as the
// kernel's object names are.
class MutexTable {
  public:
    bool exists(std::string_view name) const;
    // Every mutex lives while a handle to it is open.
    struct Mutex {
        int handles = 0;
        std::uint64_t owner = 0;  // the id of the owning MemorySystem, 0 for none
        int recursion = 0;
    };
    std::map<std::string, Mutex, std::less<>> named;
    std::uint64_t nextId = 1;  // shared source of owner ids and handle values
};

struct ExitWindowsCall {
    std::uint32_t flags = 0;
    bool privilegeEnabled = false;  // whether the shutdown privilege was asked for before
};

struct ShellCall {
    std::string verb;
    std::string file;
    std::string parameters;
    int showCommand = 0;
};

class MemorySystem : public System {
  public:
    explicit MemorySystem(FileSystem& files,
                          std::shared_ptr<MutexTable> mutexes = std::make_shared<MutexTable>());

    std::uint32_t tickCount() override;
    LocalTime now() override { return now_; }
    std::string shortDateText(const LocalTime& t) override;  // "11/22/2026"
    std::string longTimeText(const LocalTime& t) override;   // "7:14:05 PM"
    std::optional<std::string> computerName() override { return computerName_; }
    std::optional<std::string> userName() override { return userName_; }
    std::string windowsFolder() override { return windowsFolder_; }
    std::string systemFolder() override { return systemFolder_; }
    std::optional<std::string> environment(std::string_view name) override;
    std::vector<std::string> environmentStrings() override;  // in the order they were set
    std::string executablePath() override { return executablePath_; }

    MutexResult createMutex(std::string_view name, bool initialOwner) override;
    MutexHandle openMutex(std::string_view name) override;
    bool releaseMutex(MutexHandle handle) override;
    void closeHandle(MutexHandle handle) override;

    bool shellExecute(std::string_view verb, std::string_view file, std::string_view parameters,
                      int showCommand) override;

    // Kept in movesAtRestart(); nothing carries them out.
    bool moveFileAtRestart(std::string_view from, std::string_view to,
                           std::uint32_t flags) override;
    std::string lastErrorText() override;
    void enableShutdownPrivilege() override { ++privilegeRequests_; }
    bool exitWindows(std::uint32_t flags) override;  // recorded, taken

    int screenWidthPixels() override { return screenWidth_; }
    int screenHeightPixels() override { return screenHeight_; }
    int screenDpiY() override { return dpi_; }
    bool screenReaderActive() override { return screenReader_; }

    std::vector<TopWindow> topLevelWindows() override { return windows_; }
    bool postClose(std::uintptr_t window) override;

    std::string readProfileString(std::string_view section, std::string_view key,
                                  std::string_view defaultValue, std::size_t capacity,
                                  std::string_view file) override;
    bool writeProfileString(std::string_view section, std::string_view key, std::string_view value,
                            std::string_view file) override;

    // Scripting. The tick count advances by the step on every read (default 1, so that a
    // wait loop always ends); a step of 0 freezes it.
    void setTickCount(std::uint32_t ticks) { ticks_ = ticks; }
    void setTickStep(std::uint32_t step) { tickStep_ = step; }
    void advanceTicks(std::uint32_t ms) { ticks_ += ms; }
    void setNow(const LocalTime& t) { now_ = t; }
    void setNow(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
        now_ = LocalTime{year, month, day, hour, minute, second};
    }
    void setComputerName(std::optional<std::string> name) { computerName_ = std::move(name); }
    void setUserName(std::optional<std::string> name) { userName_ = std::move(name); }
    void setWindowsFolder(std::string path) { windowsFolder_ = std::move(path); }
    void setSystemFolder(std::string path) { systemFolder_ = std::move(path); }
    void setExecutablePath(std::string path) { executablePath_ = std::move(path); }
    // Names compare without regard to case; std::nullopt removes the variable.
    void setEnvironment(std::string_view name, std::optional<std::string> value);
    void setShellExecuteResult(bool ok) { shellResult_ = ok; }
    // MoveFileEx refuses (as it does without the rights to the registry) and keeps nothing.
    void refuseMovesAtRestart(bool refuse = true) { refuseMoves_ = refuse; }
    void setScreenSize(int width, int height) {
        screenWidth_ = width;
        screenHeight_ = height;
    }
    void setDpi(int dpi) { dpi_ = dpi; }
    void setScreenReader(bool active) { screenReader_ = active; }
    // Adds a top-level window, returns its handle.
    std::uintptr_t addWindow(std::string title, std::uint32_t pid);
    void removeWindow(std::uintptr_t handle);

    // Inspection.
    const std::vector<ShellCall>& shellCalls() const { return shellCalls_; }
    const std::vector<std::uintptr_t>& closeRequests() const { return closeRequests_; }
    const std::vector<RestartMove>& movesAtRestart() const { return moves_; }
    int errorTextReads() const { return errorTextReads_; }
    int shutdownPrivilegeRequests() const { return privilegeRequests_; }
    const std::vector<ExitWindowsCall>& exitWindowsCalls() const { return exitCalls_; }
    MutexTable& mutexes() { return *mutexes_; }
    // Whether this system (process) holds a handle to the named mutex.
    bool holdsMutex(std::string_view name) const;

  private:
    struct HandleEntry {
        std::string name;  // empty for an unnamed mutex
        bool named = false;
    };
    MutexTable::Mutex* mutexOf(MutexHandle handle);
    MutexHandle newHandle(std::string_view name, bool named);

    FileSystem& files_;
    std::shared_ptr<MutexTable> mutexes_;
    std::uint64_t id_;
    std::map<MutexHandle, HandleEntry> handles_;
    std::map<MutexHandle, MutexTable::Mutex> unnamed_;

    std::uint32_t ticks_ = 1000000;
    std::uint32_t tickStep_ = 1;
    LocalTime now_{2026, 11, 22, 19, 14, 5};
    std::optional<std::string> computerName_ = std::string("ORVEXTEST");
    std::optional<std::string> userName_ = std::string("Tester");
    std::string windowsFolder_ = "C:\\WINDOWS";
    std::string systemFolder_ = "C:\\WINDOWS\\system32";
    std::string executablePath_ = "C:\\Program Files\\Norvani\\Orvex Sentry\\OrvexSentry.exe";
    std::vector<std::pair<std::string, std::string>> environment_;
    bool shellResult_ = true;
    std::vector<ShellCall> shellCalls_;
    int screenWidth_ = 1024, screenHeight_ = 768, dpi_ = 96;
    bool screenReader_ = false;
    std::vector<TopWindow> windows_;
    std::uintptr_t nextWindow_ = 0x10010;
    std::vector<std::uintptr_t> closeRequests_;
    bool refuseMoves_ = false;
    std::vector<RestartMove> moves_;
    int errorTextReads_ = 0;
    int privilegeRequests_ = 0;
    std::vector<ExitWindowsCall> exitCalls_;
};

// ---------------------------------------------------------------------------------------
// The whole back-end. Its system service reads profile strings from its own files.
class MemoryPlatform : public OwnedPlatform {
  public:
    MemoryPlatform() : system(files) {}
    // A second simulated process on the same machine's mutexes.
    explicit MemoryPlatform(std::shared_ptr<MutexTable> mutexes)
        : system(files, std::move(mutexes)) {}

    MemoryRegistry registry;
    MemoryFileSystem files;
    MemoryProcesses processes;
    MemorySystem system;

    Platform view() override { return Platform{&registry, &files, &processes, &system}; }
};

}  // namespace orvex::platform::memory
