#include "JobLog.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "SafeFile.h"
#include "log4z.h"
#include "rastovelka.h"

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

void tellIfLogEnded(uint64_t linesBefore) noexcept {
  const uint64_t lines = ILog4zManager::getInstance()->getStatusTotalWriteCount();
  if (linesBefore == 0 || lines != linesBefore || whyNotOpened(kJobLog, 0) == nullptr) return;
  std::fprintf(stderr, "\nWARNING: The job log %s ends early: it could not be opened again.\n",
               kJobLog);
}

void tellLogStaysEmpty() noexcept {
  std::fprintf(stderr, "\nWARNING: The job log %s stays empty: its thread cannot be started.\n",
               kJobLog);
}

}  // namespace velka

void StartLog4z() noexcept {
  const mode_t before = umask(022);
  const bool emptied = velka::emptyJobLog();  // the previous job's lines go
  ILog4zManager* log = ILog4zManager::getInstance();
  log->setLoggerPath(LOGGER_MAIN_ID, "/tmp");
  log->setLoggerName(LOGGER_MAIN_ID, "velka");
  // One that is started already has lines.
  const bool started = log->start() || log->getStatusTotalWriteCount() > 0;
  if (emptied && !started) velka::tellLogStaysEmpty();
  umask(before);
}
