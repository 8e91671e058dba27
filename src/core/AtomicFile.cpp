// AtomicFile.cpp: the temporary-file-and-replace rewrite of whole files.
#include "core/AtomicFile.h"

#include "platform/Failure.h"
#include "platform/Platform.h"

namespace orvex {

AtomicFile::AtomicFile(std::string target)
    : target_(std::move(target)), temp_(TempPathFor(target_)) {
    stream_ = platform::Files().open(temp_, platform::OpenMode::Write);
}

AtomicFile::~AtomicFile() {
    if (!finished_) discard();
}

std::string AtomicFile::TempPathFor(std::string_view target) {
    return std::string(target) + ".tmp";
}

void AtomicFile::Print(std::string_view text) {
    Put(text);
    Put("\r\n");
}

void AtomicFile::Put(std::string_view bytes) {
    if (stream_ == nullptr) Raise(failure::kBadFileName);
    pending_.append(bytes);
    if (pending_.size() < kWriteChunk) return;
    try {
        writePending();
    } catch (...) {
        discard();
        throw;
    }
}

void AtomicFile::writePending() {
    std::size_t done = 0;
    while (pending_.size() - done >= kWriteChunk) {
        stream_->write(pending_.data() + done, kWriteChunk);
        done += kWriteChunk;
    }
    pending_.erase(0, done);
}

void AtomicFile::Commit() {
    if (stream_ == nullptr) Raise(failure::kBadFileName);
    try {
        writePending();
        if (!pending_.empty()) stream_->write(pending_.data(), pending_.size());
        stream_->flush();
        stream_.reset();  // a file still open cannot be renamed on Windows
        platform::Files().replace(temp_, target_);
    } catch (...) {
        discard();
        throw;
    }
    finished_ = true;
}

void AtomicFile::discard() noexcept {
    finished_ = true;
    pending_.clear();
    try {
        stream_.reset();
        if (platform::Files().fileExists(temp_)) platform::Files().remove(temp_);
    } catch (...) {
        // The failure that brought us here is the one the caller hears of; a temporary
        // file left behind is truncated by the next rewrite.
    }
}

void RewriteTextFile(std::string_view path, const std::vector<std::string>& lines) {
    AtomicFile file{std::string(path)};
    for (const std::string& line : lines)
        file.Print(line);
    file.Commit();
}

}  // namespace orvex
