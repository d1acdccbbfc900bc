// Descriptors: who closes them, and reading all that one has.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace velka {

/// A descriptor with one owner.
class UniqueFd {
 public:
  explicit UniqueFd(int fd = -1) noexcept : fd_(fd) {}
  ~UniqueFd();
  UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;

  [[nodiscard]] int get() const noexcept { return fd_; }
  [[nodiscard]] explicit operator bool() const noexcept { return fd_ >= 0; }
  int release() noexcept { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

/// read(), begun again where a signal interrupts it.
[[nodiscard]] ssize_t readSome(int fd, std::span<uint8_t> buffer) noexcept;

/// Reads until the buffer is full or the file ends and returns the bytes read. errno is
/// 0 unless reading failed.
[[nodiscard]] size_t readAll(int fd, std::span<uint8_t> buffer) noexcept;

}  // namespace velka
