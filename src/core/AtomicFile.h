// AtomicFile.h: whole-file rewrites that a crash, a power cut or a failed write cannot
// leave half done: the new content goes to a temporary file beside the target, which then
// replaces the target in one step.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"

namespace orvex {

// Writes a new version of one file. Nothing reaches the target until Commit; an
// AtomicFile destroyed without a successful Commit removes its temporary file, and the
// target keeps its old content. Every failure is raised with its classic number.
class AtomicFile {
  public:
    // Opens the temporary file (the target's name + ".tmp", truncated if a crash left one).
    explicit AtomicFile(std::string target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    // The text and CR LF, as a classic print writes a line.
    void Print(std::string_view text);
    // The bytes as they stand.
    void Put(std::string_view bytes);
    // Writes what is pending, makes it durable and puts it in the target's place.
    void Commit();

    static std::string TempPathFor(std::string_view target);

    // Written bytes are handed to the file in pieces of this size.
    static constexpr std::size_t kWriteChunk = 4096;

  private:
    void writePending();
    void discard() noexcept;

    std::string target_;
    std::string temp_;
    std::unique_ptr<platform::FileStream> stream_;
    std::string pending_;
    bool finished_ = false;  // committed or discarded
};

// Replaces a file's content by the lines, each ended by CR LF.
void RewriteTextFile(std::string_view path, const std::vector<std::string>& lines);

}  // namespace orvex
