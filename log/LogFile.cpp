#include "LogFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "SafeFile.h"

bool Log4zFileHandler::openForAppending(const char* path) noexcept {
  close();
  file_ = velka::openRegularForWriting(path, false);
  return isOpen();
}

bool Log4zFileHandler::openForReading(const char* path) noexcept {
  close();
  file_ = velka::openRegularForReading(path);
  return isOpen();
}

long Log4zFileHandler::length() noexcept {
  if (!isOpen()) {
    return -1;
  }
  const off_t position = lseek(file_.get(), 0, SEEK_CUR);
  const off_t end = lseek(file_.get(), 0, SEEK_END);
  const bool restored = position >= 0 && lseek(file_.get(), position, SEEK_SET) == position;
  return restored ? static_cast<long>(end) : -1;
}

std::size_t Log4zFileHandler::write(const char* bytes, std::size_t count) noexcept {
  if (!isOpen()) {
    return 0;
  }
  return velka::writeToFile(file_.get(), {reinterpret_cast<const uint8_t*>(bytes), count});
}

void Log4zFileHandler::close() noexcept {
  if (!isOpen()) {
    return;
  }
  fsync(file_.get());
  posix_fadvise(file_.get(), 0, 0, POSIX_FADV_DONTNEED);
  fsync(file_.get());
  file_ = velka::UniqueFd();
}

std::optional<std::string> Log4zFileHandler::readContent() {
  constexpr std::size_t kLargest = std::size_t{1} << 20U;
  if (!isOpen()) {
    return std::nullopt;
  }
  std::string content;
  std::array<uint8_t, 4096> block{};
  std::size_t count = 0;
  while ((count = velka::readAll(file_.get(), block)) > 0) {
    content.append(block.begin(), block.begin() + count);
    if (content.size() > kLargest) {
      return std::nullopt;
    }
    if (count < block.size()) {
      break;
    }
  }
  return errno != 0 ? std::nullopt : std::optional(std::move(content));
}
