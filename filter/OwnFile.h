// Files under directories that others may write to, where only a file of our own
// may be read, written or removed.
//
// A file is our own when it is regular, belongs to this process's user and has one
// name. In a sticky directory such as /tmp nobody else can then replace it.
#pragma once

#include <utility>

namespace velka {

/// A descriptor with one owner.
class UniqueFd {
 public:
  explicit UniqueFd(int fd = -1) noexcept : fd_(fd) {}
  ~UniqueFd();
  UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
  }
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;

  [[nodiscard]] int get() const noexcept { return fd_; }
  [[nodiscard]] explicit operator bool() const noexcept { return fd_ >= 0; }

 private:
  int fd_;
};

/// Opens our own file at `path` for reading. None for links, FIFOs, folders and
/// files of somebody else.
[[nodiscard]] UniqueFd openOwnFile(const char* path) noexcept;

/// The same for reading and writing, made with mode 0600 where there is none.
[[nodiscard]] UniqueFd openOrMakeOwnFile(const char* path) noexcept;

/// Whether `path` still names the open file.
[[nodiscard]] bool isNamed(const UniqueFd& file, const char* path) noexcept;

/// Makes an empty file of our own with mode 0600; one that is there is replaced if
/// it is our own. Returns whether that could be done.
[[nodiscard]] bool makeFreshOwnFile(const char* path) noexcept;

/// Remove our own file at `path`, or only if it is empty. Anything else stays.
void removeOwnFile(const char* path) noexcept;
void removeEmptyOwnFile(const char* path) noexcept;

}  // namespace velka
