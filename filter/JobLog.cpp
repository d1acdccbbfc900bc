#include "JobLog.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "SafeFile.h"

namespace velka {

const char* whyNotOpened(const char* path, int error) noexcept {
  struct stat status = {};
  if (lstat(path, &status) == 0 && !S_ISREG(status.st_mode)) return nullptr;
  // Not in the user's language: the line is for the administrator.
  return error == 0 ? "it is not this user's alone" : strerrordesc_np(error);
}

bool emptyJobLog() noexcept {
  errno = 0;
  if (openRegularForWriting(kJobLog, true) != nullptr) return true;
  const char* why = whyNotOpened(kJobLog, errno);
  if (why == nullptr) return false;
  // Other filters share the stream, and our own texts end without a line end: the
  // warning begins and ends with one, else the scheduler would not know its prefix.
  std::fprintf(stderr, "\nWARNING: The job log %s cannot be opened: %s.\n", kJobLog, why);
  return false;
}

void tellLogStaysEmpty() noexcept {
  std::fprintf(stderr, "\nWARNING: The job log %s stays empty: its thread cannot be started.\n",
               kJobLog);
}

}  // namespace velka
