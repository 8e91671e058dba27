// TextFile.cpp: buffered classic text-file access over the platform's FileStream.
#include "core/TextFile.h"

#include <cstring>
#include <utility>

#include "platform/Failure.h"
#include "platform/Platform.h"

namespace orvex {
namespace {

constexpr std::size_t kReadChunk = 64 * 1024;
constexpr std::size_t kWriteChunk = 64 * 1024;
constexpr int kBadRecordNumber = 63;

bool IsFieldBlank(int c) {
    return c == ' ' || c == '\t';
}

}  // namespace

TextFile::TextFile(std::unique_ptr<platform::FileStream> stream, Mode mode)
    : stream_(std::move(stream)), mode_(mode) {}

TextFile TextFile::ForInput(std::string_view path) {
    return TextFile(platform::Files().open(path, platform::OpenMode::Read), Mode::Input);
}

TextFile TextFile::ForOutput(std::string_view path) {
    return TextFile(platform::Files().open(path, platform::OpenMode::Write), Mode::Output);
}

TextFile TextFile::ForAppend(std::string_view path) {
    return TextFile(platform::Files().open(path, platform::OpenMode::Append), Mode::Append);
}

TextFile TextFile::ForBinary(std::string_view path) {
    return TextFile(platform::Files().open(path, platform::OpenMode::ReadWrite), Mode::Binary);
}

TextFile::TextFile(TextFile&& other) noexcept
    : stream_(std::move(other.stream_)),
      mode_(other.mode_),
      buffer_(std::move(other.buffer_)),
      bufferEnd_(std::exchange(other.bufferEnd_, 0)),
      bufferPos_(other.bufferPos_),
      pending_(std::move(other.pending_)) {}

TextFile& TextFile::operator=(TextFile&& other) noexcept {
    if (this != &other) {
        closeQuietly();
        stream_ = std::move(other.stream_);
        mode_ = other.mode_;
        buffer_ = std::move(other.buffer_);
        bufferEnd_ = std::exchange(other.bufferEnd_, 0);
        bufferPos_ = other.bufferPos_;
        pending_ = std::move(other.pending_);
    }
    return *this;
}

TextFile::~TextFile() {
    closeQuietly();
}

void TextFile::closeQuietly() noexcept {
    try {
        Close();
    } catch (...) {
        // Nothing to report to here; writers that care call Close themselves.
    }
}

platform::FileStream& TextFile::stream() {
    if (stream_ == nullptr) Raise(failure::kBadFileName);
    return *stream_;
}

void TextFile::Close() {
    if (stream_ == nullptr) return;  // closing a closed file is harmless, as classically
    auto closing = std::move(stream_);
    std::string pending = std::move(pending_);
    bufferEnd_ = 0;
    bufferPos_ = 0;
    if (!pending.empty()) closing->write(pending.data(), pending.size());
}

bool TextFile::fill() {
    flushWrites();
    // Allocated once and never zeroed: most files read are far smaller than the chunk.
    if (!buffer_) buffer_ = std::make_unique_for_overwrite<char[]>(kReadChunk);
    bufferEnd_ = stream().read(buffer_.get(), kReadChunk);
    bufferPos_ = 0;
    return bufferEnd_ > 0;
}

int TextFile::peek() {
    if (bufferPos_ == bufferEnd_ && !fill()) return -1;
    return static_cast<unsigned char>(buffer_[bufferPos_]);
}

int TextFile::get() {
    const int c = peek();
    if (c >= 0) ++bufferPos_;
    return c;
}

void TextFile::requireReadable() {
    stream();
    if (!readable()) Raise(failure::kBadFileMode);
    if (peek() < 0) Raise(failure::kPastEnd);
}

bool TextFile::Eof() {
    stream();
    return !readable() || peek() < 0;
}

void TextFile::skipLineEnd() {
    if (peek() == '\n') ++bufferPos_;
}

std::string TextFile::LineInput() {
    requireReadable();
    std::string line;
    while (bufferPos_ < bufferEnd_ || fill()) {
        const char* start = buffer_.get() + bufferPos_;
        const std::size_t available = bufferEnd_ - bufferPos_;
        const void* cr = std::memchr(start, '\r', available);
        if (cr == nullptr) {
            line.append(start, available);
            bufferPos_ = bufferEnd_;
            continue;
        }
        const auto length = static_cast<std::size_t>(static_cast<const char*>(cr) - start);
        line.append(start, length);
        bufferPos_ += length + 1;
        skipLineEnd();
        break;
    }
    return line;
}

void TextFile::skipToDelimiter() {
    for (int c; (c = get()) >= 0;) {
        if (c == ',') return;
        if (c == '\r') return skipLineEnd();
    }
}

std::string TextFile::Input() {
    requireReadable();
    while (IsFieldBlank(peek()))
        get();
    std::string field;
    if (peek() == '"') {
        get();
        for (int c; (c = get()) >= 0 && c != '"';)
            field += static_cast<char>(c);
        skipToDelimiter();  // whatever stands between the closing quote and the delimiter
        return field;
    }
    for (int c; (c = get()) >= 0;) {
        if (c == ',') break;
        if (c == '\r') {
            skipLineEnd();
            break;
        }
        field += static_cast<char>(c);
    }
    return field;
}

void TextFile::dropReadAhead() {
    if (bufferPos_ < bufferEnd_) {
        const std::uint64_t unread = bufferEnd_ - bufferPos_;
        stream_->seek(stream_->position() - unread);
    }
    bufferEnd_ = 0;
    bufferPos_ = 0;
}

void TextFile::flushWrites() {
    if (pending_.empty()) return;
    std::string pending = std::move(pending_);
    pending_.clear();
    stream().write(pending.data(), pending.size());
}

void TextFile::Put(std::string_view bytes) {
    stream();
    if (mode_ == Mode::Input) Raise(failure::kBadFileMode);
    dropReadAhead();
    pending_.append(bytes);
    if (pending_.size() >= kWriteChunk) flushWrites();
}

void TextFile::Print(std::string_view text) {
    Put(text);
    Put("\r\n");
}

void TextFile::Seek(std::uint64_t position) {
    stream();
    if (position < 1) Raise(kBadRecordNumber);
    flushWrites();
    bufferEnd_ = 0;
    bufferPos_ = 0;
    stream_->seek(position - 1);
}

std::uint64_t TextFile::Lof() {
    stream();
    flushWrites();
    return stream_->size();
}

std::string ReadAllBytes(std::string_view path) {
    auto stream = platform::Files().open(path, platform::OpenMode::Read);
    std::string bytes;
    bytes.resize(static_cast<std::size_t>(stream->size()));
    std::size_t total = 0;
    while (total < bytes.size()) {
        const std::size_t got = stream->read(bytes.data() + total, bytes.size() - total);
        if (got == 0) break;
        total += got;
    }
    bytes.resize(total);
    return bytes;
}

}  // namespace orvex
