// The stream behind one logger.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>

/// Wraps one FILE pointer, or none.
class Log4zFileHandler {
 public:
  Log4zFileHandler() noexcept = default;
  ~Log4zFileHandler() { close(); }
  Log4zFileHandler(const Log4zFileHandler&) = delete;
  Log4zFileHandler& operator=(const Log4zFileHandler&) = delete;

  /// Opens a regular file for appending, unbuffered: a written line has left
  /// the process when it is synchronised, and a full disk shows as a short
  /// write. Closes what was open.
  bool openForAppending(const char* path) noexcept;
  /// Opens a regular file for reading. Closes what was open.
  bool openForReading(const char* path) noexcept;

  [[nodiscard]] bool isOpen() const noexcept { return file_ != nullptr; }
  /// Length in bytes, or -1.
  [[nodiscard]] long length() noexcept;
  /// Appends and returns the bytes written.
  std::size_t write(const char* bytes, std::size_t count) noexcept;
  void flush() noexcept;
  /// Brings the file to the disk, out of the page cache, and closes it.
  void close() noexcept;
  /// The whole file, or nothing when none is open, reading fails or it is
  /// above 1 MiB.
  [[nodiscard]] std::optional<std::string> readContent();

 private:
  std::FILE* file_ = nullptr;
};
