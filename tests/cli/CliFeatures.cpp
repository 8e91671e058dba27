// CliFeatures.cpp: orvex run as a real process, as a user or a script runs it: definitions
// compiled by `orvex defs compile`, a planted tree scanned with --json, and the mistakes a
// newcomer makes. Cross-built, the same cases run orvex.exe under Wine.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>
#ifdef _WIN32
#include <windows.h>
#else
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

// The digest of kListedBytes is listed under [MD5].
const std::string kListedBytes = "planted bytes of a listed file";
const std::string kDefinitions =
    "Ver=11/22/2026\n"
    "[MD5]\n67a8680e4e35261a2da486a7257859ab|HashThreat\n[End]\n"
    "[Files]\nNameThreat|named.exe\nHeldThreat|held.exe\nUnruled|unruled.exe\n[End]\n"
    "[Exclusion]\nheld.exe|||heldhere|4|2\nnamed.exe|namethreat|||0|1\n[End]\n";

struct Outcome {
    int exitCode = -1;
    std::string out, err;
};

fs::path OrvexProgram() {
#ifdef _WIN32
    char self[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, self, MAX_PATH);
    return fs::path(self).parent_path().parent_path() / "apps" / "orvex.exe";
#else
    return fs::path(ORVEX_BINARY_DIR) / "apps" / "orvex";
#endif
}

std::string Quoted(const fs::path& path) {
    std::string quoted = "\"";
    quoted += path.string();
    quoted += '"';
    return quoted;
}

std::string ReadAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::erase(text, '\r');
    return text;
}

void WriteFile(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

class CliTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        work_ = fs::temp_directory_path() / ("orvex-cli-" + std::to_string(ProcessId()));
        fs::remove_all(work_);
        WriteFile(work_ / "defs.txt", kDefinitions);
        fs::create_directories(Defs());
        const Outcome compiled = Orvex("defs compile " + Quoted(work_ / "defs.txt") + " " +
                                       Quoted(Defs() / "ovsdef.dat"));
        ASSERT_EQ(compiled.exitCode, 0) << compiled.err;
    }
    static void TearDownTestSuite() { fs::remove_all(work_); }

    static fs::path Defs() { return work_ / "defs"; }
    static fs::path Work() { return work_; }

    // Runs orvex with `arguments` (paths already quoted) and collects what it printed.
    static Outcome Orvex(const std::string& arguments) {
        const fs::path errors = work_ / "stderr.txt";
        std::string command = Quoted(OrvexProgram()) + " " + arguments + " 2>" + Quoted(errors);
        Outcome run;
#ifdef _WIN32
        command = Quoted(command);  // cmd /c takes off the outer quotes
        FILE* pipe = _popen(command.c_str(), "r");
#else
        FILE* pipe = popen(command.c_str(), "r");
#endif
        if (pipe == nullptr) return run;
        char buffer[4096];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            run.out.append(buffer, n);
#ifdef _WIN32
        run.exitCode = _pclose(pipe);
#else
        const int status = pclose(pipe);
        run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
        std::erase(run.out, '\r');
        run.err = ReadAll(errors);
        return run;
    }

  private:
    static int ProcessId() {
#ifdef _WIN32
        return static_cast<int>(GetCurrentProcessId());
#else
        return static_cast<int>(getpid());
#endif
    }
    static inline fs::path work_;
};

TEST_F(CliTest, PlantedFilesAreReportedAsTheDefinitionsListThemAndDecoysAreNot) {
    struct Planted {
        const char* folder;
        const char* file;
        bool listedBytes;
        const char* threat;  // empty: a decoy, never reported
        const char* level;
    };
    const Planted planted[] = {
        {"bar", "cfg.ini", true, "HashThreat", "Confirmed"},
        {"bar", "cfg.txt", true, "", ""},  // a .txt is never hashed
        {"app", "cfg.ini", true, "", ""},  // the program's folder is not scanned
        {"tools", "named.exe", false, "NameThreat", "Confirmed"},
        {"heldhere", "held.exe", false, "HeldThreat", "Suspect"},
        {"elsewhere", "held.exe", false, "", ""},  // its rule wants a heldhere folder
        {"tools", "unruled.exe", false, "", ""},   // a listed name without a rule
    };
    const fs::path tree = Work() / "tree";
    for (const Planted& p : planted)
        WriteFile(tree / p.folder / p.file, p.listedBytes ? kListedBytes : "plain bytes");

    const Outcome run = Orvex("scan --data " + Quoted(Defs()) + " --path " + Quoted(tree) +
                              " --app-dir " + Quoted(tree / "app") + " --json");
    ASSERT_EQ(run.exitCode, 1) << run.err;
    // Each finding as "folder/file name level category", against the planted threats.
    std::vector<std::string> reported, expected;
    const nlohmann::json found = nlohmann::json::parse(run.out);
    for (const auto& row : found["findings"]) {
        std::string folder = row["location"];
        folder.pop_back();  // the closing backslash
        reported.push_back(folder.substr(folder.rfind('\\') + 1) + "/" +
                           row["item"].get<std::string>() + " " + row["name"].get<std::string>() +
                           " " + row["level"].get<std::string>() + " " +
                           row["category"].get<std::string>());
    }
    for (const Planted& p : planted)
        if (*p.threat)
            expected.push_back(std::string(p.folder) + "/" + p.file + " " + p.threat + " " +
                               p.level + " FileSystem");
    std::sort(reported.begin(), reported.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(reported, expected) << run.out;

    const Outcome logged = Orvex("log show " + Quoted(tree / "app" / "Logged.txt"));
    EXPECT_EQ(logged.exitCode, 0) << logged.err;
    EXPECT_NE(logged.out.find("NameThreat"), std::string::npos) << logged.out;

    fs::create_directories(Work() / "clean");
    const Outcome clean = Orvex("scan --data " + Quoted(Defs()) + " --path " +
                                Quoted(Work() / "clean") + " --app-dir " + Quoted(tree / "app"));
    EXPECT_EQ(clean.exitCode, 0) << clean.err;
    EXPECT_EQ(clean.out, "No threats found.\n");
}

TEST_F(CliTest, CleanRemovesWithBackupsAndBackupsPutsThemBackOrThrowsThemAway) {
    const fs::path tree = Work() / "infected";
    const fs::path app = tree / "app";
    WriteFile(tree / "bar" / "cfg.ini", kListedBytes);
    WriteFile(tree / "tools" / "named.exe", "plain bytes");
    WriteFile(tree / "bar" / "cfg.txt", kListedBytes);  // a decoy: never hashed
    fs::create_directories(app);
    const std::string appDir = " --app-dir " + Quoted(app);
    const std::string scanned = "--data " + Quoted(Defs()) + " --path " + Quoted(tree) + appDir;

    const Outcome clean = Orvex("clean " + scanned + " --json");
    ASSERT_EQ(clean.exitCode, 1) << clean.err << clean.out;
    const nlohmann::json cleaned = nlohmann::json::parse(clean.out);
    EXPECT_EQ(cleaned["threats"], 2);
    EXPECT_EQ(cleaned["restartNeeded"], false);
    ASSERT_EQ(cleaned["findings"].size(), 2u) << clean.out;
    for (const auto& row : cleaned["findings"])
        EXPECT_EQ(row["outcome"], "delete") << row;
    EXPECT_FALSE(fs::exists(tree / "bar" / "cfg.ini"));
    EXPECT_FALSE(fs::exists(tree / "tools" / "named.exe"));
    EXPECT_TRUE(fs::exists(tree / "bar" / "cfg.txt"));
    EXPECT_TRUE(fs::exists(app / "Backup.Dat"));

    const Outcome listed = Orvex("backups list --json" + appDir);
    ASSERT_EQ(listed.exitCode, 0) << listed.err;
    const nlohmann::json backups = nlohmann::json::parse(listed.out)["backups"];
    std::vector<std::string> records;
    for (const auto& r : backups) {
        records.push_back(r["threat"].get<std::string>() + " " + r["kind"].get<std::string>() +
                          " " + r["oldName"].get<std::string>());
        EXPECT_TRUE(fs::exists(app / "Backup" / r["newName"].get<std::string>())) << r;
    }
    std::sort(records.begin(), records.end());
    EXPECT_EQ(records,
              (std::vector<std::string>{"HashThreat File cfg.ini", "NameThreat File named.exe"}));

    struct Step {
        std::string arguments;
        int exitCode;
        std::string said;  // on stderr
    };
    const Step steps[] = {
        {"restore hashTHREAT", 0, ""},  // threat names in any case
        {"delete Nobody", 2, "\"Nobody\""},
        {"delete NameThreat", 0, ""},
        {"restore --all", 0, ""},  // nothing left to restore
    };
    for (const Step& step : steps) {
        const Outcome run = Orvex("backups " + step.arguments + appDir);
        EXPECT_EQ(run.exitCode, step.exitCode) << step.arguments << ": " << run.err;
        EXPECT_NE(run.err.find(step.said), std::string::npos) << step.arguments << ": " << run.err;
    }
    EXPECT_EQ(ReadAll(tree / "bar" / "cfg.ini"), kListedBytes);
#ifndef _WIN32
    // Natively the registry has no DataPath: the usage report of the restore goes beside
    // Backup.Dat, not into the working folder.
    EXPECT_EQ(ReadAll(app / "ovsstat.ph"), "HashThreat||3|\n");
#endif
    EXPECT_FALSE(fs::exists(tree / "tools" / "named.exe"));
    EXPECT_EQ(Orvex("backups list" + appDir).out, "No backups.\n");

    fs::create_directories(Work() / "spotless");
    const Outcome nothing =
        Orvex("clean --data " + Quoted(Defs()) + " --path " + Quoted(Work() / "spotless") + appDir);
    EXPECT_EQ(nothing.exitCode, 0) << nothing.err;
    EXPECT_EQ(nothing.out, "No threats found.\n");
}

TEST_F(CliTest, MistakesEndWithExitCodeTwoAndAMessageNamingWhatWasTyped) {
    const fs::path missing = Work() / "missing";
    fs::create_directories(Work() / "empty");
    WriteFile(Work() / "thin" / "ovsdef.dat", ReadAll(Defs() / "ovsdef.dat"));
    WriteFile(Work() / "thin.txt", "[Files]\nOne|one.exe\n[End]\n");
    ASSERT_EQ(Orvex("defs compile " + Quoted(Work() / "thin.txt") + " " +
                    Quoted(Work() / "thin" / "ovsdef.dat"))
                  .exitCode,
              0);
    const std::string data = "scan --data " + Quoted(Defs());
    struct Mistake {
        std::string arguments;
        std::vector<std::string> said;
    };
    const Mistake mistakes[] = {
        {"scan --data " + Quoted(missing), {"--data " + missing.string(), "no such folder"}},
        {"scan --data " + Quoted(Work() / "empty"),
         {(Work() / "empty").string(), "no ovsdef.dat", "orvex defs compile"}},
        {"scan --data " + Quoted(Work() / "thin"), {"fewer than two files"}},
        {data + " --path " + Quoted(missing), {"--path " + missing.string(), "no such folder"}},
        {data + " --app-dir " + Quoted(missing), {"--app-dir " + missing.string()}},
        {"log show " + Quoted(missing / "Logged.txt"), {(missing / "Logged.txt").string()}},
        {"defs dump " + Quoted(missing / "x.dat"), {"no such file"}},
        {"scan --bogus", {"--bogus"}},
        {"clean --data " + Quoted(missing), {"--data " + missing.string(), "no such folder"}},
        {"backups list --app-dir " + Quoted(missing), {"--app-dir " + missing.string()}},
        {"backups restore", {"THREAT", "--all"}},
#ifndef _WIN32
        // Natively the registry is the program's own and empty: only --data can help.
        {"scan", {"--data DIR"}},
#endif
    };
    for (const Mistake& mistake : mistakes) {
        const Outcome run = Orvex(mistake.arguments);
        EXPECT_EQ(run.exitCode, 2) << mistake.arguments;
        for (const std::string& words : mistake.said)
            EXPECT_NE(run.err.find(words), std::string::npos)
                << mistake.arguments << ": " << run.err;
#ifndef _WIN32
        EXPECT_EQ(run.err.find("C:\\"), std::string::npos) << run.err;
#endif
    }
}

}  // namespace
