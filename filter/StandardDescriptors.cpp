#include "StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace velka {

void fillStandardDescriptors() noexcept {
  for (int fd = STDIN_FILENO; fd <= STDERR_FILENO; ++fd) {
    if (fcntl(fd, F_GETFD) != -1) continue;
    // The lowest free descriptor is this one, as those below are open.
    if (open("/dev/null", O_RDWR) != fd) return;
  }
}

}  // namespace velka
