// TextFile.h: classic text-file access on the installed FileSystem: print lines with
// CR LF, line input that ends at CR or CR LF (a lone LF stays in the text), delimited
// input, append mode with a reposition that overwrites the start of the file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/FileSystem.h"

namespace orvex {

class TextFile {
  public:
    // Each raises the classic failure of the file system (53 when an input file is
    // missing, 76 for a missing folder, 70 when locked, ...).
    static TextFile ForInput(std::string_view path);
    static TextFile ForOutput(std::string_view path);  // created or truncated
    static TextFile ForAppend(std::string_view path);  // created when missing
    static TextFile ForBinary(std::string_view path);  // read and write, created when missing

    TextFile(TextFile&& other) noexcept;
    TextFile& operator=(TextFile&& other) noexcept;
    // Closes the file; a failure to write the last bytes is lost here, so writers that
    // care call Close.
    ~TextFile();

    // True at the end of the data; always true for files opened to write only.
    bool Eof();
    // One line without its end; failure 62 at end of file.
    std::string LineInput();
    // One delimited field (quotes dropped); failure 62 at end of file.
    std::string Input();
    // The text and CR LF.
    void Print(std::string_view text);
    // The bytes as they stand.
    void Put(std::string_view bytes);
    // Moves to a 1-based byte position; failure 63 below 1.
    void Seek(std::uint64_t position);
    std::uint64_t Lof();
    // Writes what is pending and closes; later reads and writes raise failure 52. The
    // file is closed even when that last write fails.
    void Close();
    bool IsOpen() const { return stream_ != nullptr; }

  private:
    enum class Mode { Input, Output, Append, Binary };

    TextFile(std::unique_ptr<platform::FileStream> stream, Mode mode);
    platform::FileStream& stream();
    bool readable() const { return mode_ == Mode::Input || mode_ == Mode::Binary; }
    int peek();
    int get();
    bool fill();
    void requireReadable();
    void dropReadAhead();
    void flushWrites();
    void skipLineEnd();  // after a CR: one LF that follows belongs to the line end
    void skipToDelimiter();
    void closeQuietly() noexcept;

    std::unique_ptr<platform::FileStream> stream_;
    Mode mode_ = Mode::Input;
    std::unique_ptr<char[]> buffer_;  // read-ahead bytes, up to bufferEnd_
    std::size_t bufferEnd_ = 0;
    std::size_t bufferPos_ = 0;
    std::string pending_;  // written bytes not yet handed to the stream
};

// The whole content of a file as bytes.
std::string ReadAllBytes(std::string_view path);

}  // namespace orvex
