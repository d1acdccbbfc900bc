#include "StandardOutput.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace velka {
namespace {

bool worthAnotherTry(int fd, int error) noexcept {
  if (error == EINTR) return true;
  if (error != EAGAIN && error != EWOULDBLOCK) return false;
  pollfd ready = {fd, POLLOUT, 0};
  return poll(&ready, 1, -1) >= 0 || errno == EINTR;
}

// The output that a write has failed on. It is told by its file, as a process may be
// given another standard output.
class FailedOutput {
 public:
  void note(int error) noexcept {
    error_ = error;
    failed_ = fstat(STDOUT_FILENO, &file_) == 0;
  }
  [[nodiscard]] int error() const noexcept { return error_; }
  [[nodiscard]] bool isCurrent() const noexcept {
    struct stat now = {};
    return failed_ && fstat(STDOUT_FILENO, &now) == 0 && now.st_dev == file_.st_dev &&
           now.st_ino == file_.st_ino;
  }

 private:
  int error_ = 0;
  bool failed_ = false;
  struct stat file_ = {};
};

FailedOutput failedOutput;  // one thread prints

}  // namespace

size_t writeAll(int fd, std::span<const uint8_t> bytes) noexcept {
  // write() may refuse more than 2 GiB at once.
  constexpr size_t kMostAtOnce = size_t{1} << 30U;
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = write(fd, bytes.data() + done, std::min(bytes.size() - done, kMostAtOnce));
    if (n > 0) {
      done += static_cast<size_t>(n);
    } else if (n == 0 || !worthAnotherTry(fd, errno)) {
      break;
    }
  }
  return done;
}

size_t writeToPrinter(std::span<const uint8_t> bytes) noexcept {
  if (failedOutput.isCurrent()) return 0;
  const size_t written = writeAll(STDOUT_FILENO, bytes);
  if (written < bytes.size()) failedOutput.note(errno);
  return written;
}

int printerError() noexcept {
  return failedOutput.error();
}

}  // namespace velka
