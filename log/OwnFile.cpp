#include "OwnFile.h"

#include <sys/stat.h>
#include <unistd.h>

namespace velka {
namespace {

// Without O_NONBLOCK the open of a FIFO would wait for its other end.
constexpr int kSafeFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
constexpr mode_t kOwnerOnly = 0600;

using Status = struct stat;

// A file that lost its name since it was opened is still ours; one with a second
// name may be anybody's.
bool isOwn(const Status& status) noexcept {
  return S_ISREG(status.st_mode) && status.st_uid == geteuid() && status.st_nlink <= 1;
}

bool isOwnPath(const char* path, Status& status) noexcept {
  return path != nullptr && lstat(path, &status) == 0 && isOwn(status);
}

}  // namespace

UniqueFd openOwnFile(const char* path, int flags, mode_t mode) noexcept {
  UniqueFd file(path == nullptr ? -1 : open(path, flags | kSafeFlags, mode));
  Status status = {};
  const bool own = file && fstat(file.get(), &status) == 0 && isOwn(status);
  return own ? std::move(file) : UniqueFd();
}

bool isNamed(const UniqueFd& file, const char* path) noexcept {
  Status opened = {};
  Status named = {};
  return fstat(file.get(), &opened) == 0 && lstat(path, &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool makeFreshOwnFile(const char* path) noexcept {
  if (path == nullptr) return false;
  removeOwnFile(path);
  const UniqueFd file(open(path, O_WRONLY | O_CREAT | O_EXCL | kSafeFlags, kOwnerOnly));
  return static_cast<bool>(file);
}

void removeOwnFile(const char* path) noexcept {
  Status status = {};
  if (isOwnPath(path, status)) unlink(path);
}

void removeEmptyOwnFile(const char* path) noexcept {
  Status status = {};
  if (isOwnPath(path, status) && status.st_size == 0) unlink(path);
}

}  // namespace velka
