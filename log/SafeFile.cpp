#include "SafeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

namespace velka {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int fd) noexcept : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) {
      close(fd_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] int get() const noexcept { return fd_; }
  int release() noexcept { return std::exchange(fd_, -1); }

  [[nodiscard]] bool isRegular() const noexcept {
    struct stat status {};
    return fd_ >= 0 && fstat(fd_, &status) == 0 && S_ISREG(status.st_mode);
  }

  /// Moves off the standard descriptors.
  void moveUp() noexcept {
    if (fd_ > STDERR_FILENO || fd_ < 0) {
      return;
    }
    const int higher = fcntl(fd_, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    close(fd_);
    fd_ = higher;
  }

 private:
  int fd_;
};

UniqueFile toStream(Descriptor& descriptor, const char* mode) noexcept {
  UniqueFile file(fdopen(descriptor.get(), mode));
  if (file) {
    descriptor.release();
  }
  return file;
}

// Without O_NONBLOCK the open of a FIFO would wait for its other end.
constexpr int kCommonFlags = O_NONBLOCK | O_CLOEXEC | O_NOCTTY;
constexpr mode_t kNewFileMode = 0666;

}  // namespace

UniqueFile openRegularForWriting(const char* path, bool truncate) noexcept {
  if (path == nullptr) {
    return nullptr;
  }
  const int append = truncate ? 0 : O_APPEND;
  Descriptor file(
      open(path, O_WRONLY | O_CREAT | O_NOFOLLOW | append | kCommonFlags, kNewFileMode));
  file.moveUp();
  if (!file.isRegular() || (truncate && ftruncate(file.get(), 0) != 0)) {
    return nullptr;
  }
  return toStream(file, truncate ? "wb" : "ab");
}

UniqueFile openRegularForReading(const char* path) noexcept {
  if (path == nullptr) {
    return nullptr;
  }
  Descriptor file(open(path, O_RDONLY | kCommonFlags));
  file.moveUp();
  return file.isRegular() ? toStream(file, "rb") : nullptr;
}

}  // namespace velka
