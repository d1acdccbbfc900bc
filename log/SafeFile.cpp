#include "SafeFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "OwnFile.h"

namespace velka {
namespace {

bool isRegular(const UniqueFd& file) noexcept {
  struct stat status {};
  return file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
}

// Moves off the standard descriptors.
UniqueFd movedUp(UniqueFd file) noexcept {
  const bool standard = file && file.get() <= STDERR_FILENO;
  return standard ? UniqueFd(fcntl(file.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1))
                  : std::move(file);
}

// A stream takes memory. That it was short for a moment must not cost the log, which
// would have to tell of it, all lines from there on: it is asked for once more.
UniqueFile toStream(UniqueFd& descriptor, const char* mode) noexcept {
  UniqueFile file(fdopen(descriptor.get(), mode));
  if (!file) {
    file.reset(fdopen(descriptor.get(), mode));
  }
  if (file) {
    descriptor.release();
  }
  return file;
}

constexpr mode_t kNewFileMode = 0666;

}  // namespace

UniqueFile openRegularForWriting(const char* path, bool truncate) noexcept {
  const int append = truncate ? 0 : O_APPEND;
  UniqueFd file = movedUp(openOwnFile(path, O_WRONLY | O_CREAT | append, kNewFileMode));
  if (!file || (truncate && ftruncate(file.get(), 0) != 0)) {
    return nullptr;
  }
  return toStream(file, truncate ? "wb" : "ab");
}

UniqueFile openRegularForReading(const char* path) noexcept {
  if (path == nullptr) {
    return nullptr;
  }
  // Without O_NONBLOCK the open of a FIFO would wait for its other end.
  UniqueFd file = movedUp(UniqueFd(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)));
  return isRegular(file) ? toStream(file, "rb") : nullptr;
}

}  // namespace velka
