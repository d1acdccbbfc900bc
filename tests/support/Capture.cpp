#include "support/Capture.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace velka::testing {

Bytes contentsOf(int fd) {
  Bytes bytes(static_cast<size_t>(lseek(fd, 0, SEEK_END)));
  size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n = pread(fd, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
    if (n <= 0) break;
    done += static_cast<size_t>(n);
  }
  bytes.resize(done);
  return bytes;
}

Capture::Capture(int fd)
    : fd_(fd), saved_(fcntl(fd, F_DUPFD_CLOEXEC, 3)), file_(memfd_create("capture", MFD_CLOEXEC)) {
  dup2(file_, fd_);
}

Capture::~Capture() {
  dup2(saved_, fd_);
  close(saved_);
  close(file_);
}

Bytes Capture::bytes() const {
  return contentsOf(file_);
}

}  // namespace velka::testing
