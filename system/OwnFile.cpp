#include "OwnFile.h"

#include <unistd.h>

namespace velka {
namespace {

// Without O_NONBLOCK the open of a FIFO would wait for its other end.
constexpr int kSafeFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
constexpr mode_t kOwnerOnly = 0600;

using Status = struct stat;

bool isOwnPath(const char* path, Status& status) noexcept {
  return path != nullptr && lstat(path, &status) == 0 && isOwn(status);
}

}  // namespace

bool isOwn(const struct stat& status, OrRoots orRoots) noexcept {
  const bool owned = status.st_uid == geteuid() || (orRoots == OrRoots::Yes && status.st_uid == 0);
  return S_ISREG(status.st_mode) && owned && status.st_nlink <= 1;
}

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

bool holdsOwnBytes(const char* path) noexcept {
  Status status = {};
  return isOwnPath(path, status) && status.st_size > 0;
}

}  // namespace velka
