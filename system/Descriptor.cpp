#include "Descriptor.h"

#include <unistd.h>

#include <cerrno>

namespace velka {

UniqueFd::~UniqueFd() {
  if (fd_ >= 0) {
    close(fd_);
  }
}

ssize_t readSome(int fd, std::span<uint8_t> buffer) noexcept {
  for (;;) {
    const ssize_t count = read(fd, buffer.data(), buffer.size());
    if (count >= 0 || errno != EINTR) {
      return count;
    }
  }
}

size_t readAll(int fd, std::span<uint8_t> buffer) noexcept {
  size_t done = 0;
  while (done < buffer.size()) {
    const ssize_t count = readSome(fd, buffer.subspan(done));
    if (count < 0) {
      return done;
    }
    if (count == 0) {
      break;
    }
    done += static_cast<size_t>(count);
  }
  errno = 0;
  return done;
}

}  // namespace velka
