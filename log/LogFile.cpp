#include "LogFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>

#include "SafeFile.h"

bool Log4zFileHandler::openForAppending(const char* path) noexcept {
  close();
  file_ = velka::openRegularForWriting(path, false).release();
  return isOpen() && std::setvbuf(file_, nullptr, _IONBF, 0) == 0;
}

bool Log4zFileHandler::openForReading(const char* path) noexcept {
  close();
  file_ = velka::openRegularForReading(path).release();
  return isOpen();
}

long Log4zFileHandler::length() noexcept {
  if (!isOpen()) {
    return -1;
  }
  const long position = std::ftell(file_);
  if (position < 0 || std::fseek(file_, 0, SEEK_END) != 0) {
    return -1;
  }
  const long end = std::ftell(file_);
  return std::fseek(file_, position, SEEK_SET) == 0 ? end : -1;
}

std::size_t Log4zFileHandler::write(const char* bytes, std::size_t count) noexcept {
  return isOpen() ? std::fwrite(bytes, 1, count, file_) : 0;
}

void Log4zFileHandler::flush() noexcept {
  if (isOpen()) {
    std::fflush(file_);
  }
}

void Log4zFileHandler::close() noexcept {
  if (!isOpen()) {
    return;
  }
  const int descriptor = fileno(file_);
  fsync(descriptor);
  posix_fadvise(descriptor, 0, 0, POSIX_FADV_DONTNEED);
  fsync(descriptor);
  std::fclose(file_);
  file_ = nullptr;
}

std::optional<std::string> Log4zFileHandler::readContent() {
  constexpr std::size_t kLargest = std::size_t{1} << 20U;
  if (!isOpen()) {
    return std::nullopt;
  }
  std::string content;
  std::array<char, 4096> block{};
  std::size_t count = 0;
  while ((count = std::fread(block.data(), 1, block.size(), file_)) > 0) {
    content.append(block.data(), count);
    if (content.size() > kLargest) {
      return std::nullopt;
    }
  }
  return std::ferror(file_) != 0 ? std::nullopt : std::optional(std::move(content));
}
