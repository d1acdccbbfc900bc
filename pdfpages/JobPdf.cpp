#include "JobPdf.h"

#include <sys/stat.h>

#include "OwnFile.h"

namespace velka {
namespace {

int64_t nanoseconds(const timespec& time) noexcept {
  constexpr int64_t kSecond = 1000000000;
  return time.tv_sec * kSecond + time.tv_nsec;
}

}  // namespace

JobPdf jobPdfAt(const char* path) noexcept {
  struct stat status = {};
  if (path == nullptr || lstat(path, &status) != 0) return {};
  return {isOwn(status, OrRoots::Yes) ? PdfState::Ours : PdfState::Foreign,
          {status.st_dev, status.st_ino, status.st_size, nanoseconds(status.st_mtim),
           nanoseconds(status.st_ctim)}};
}

}  // namespace velka
