// The yardstick of the whole-job measurements: a program that reads the job's raster
// as the filter does, with the same arguments, and prints nothing. With the options
// "log" it first starts the job log as the filter does and writes as many lines as a
// job does before its first command.
#include <cstring>

#include "RasterFile.h"
#include "log4z.h"

namespace {

void startLog() {
  constexpr int kLines = 60;
  ILog4zManager* log = ILog4zManager::getInstance();
  log->setLoggerPath(LOGGER_MAIN_ID, "/tmp");
  log->setLoggerName(LOGGER_MAIN_ID, "velka-bench");
  log->start();
  for (int line = 0; line < kLines; ++line) VELKA_LOG_DEBUG("line %d", line);
}

}  // namespace

int main(int argc, char* argv[]) {
  constexpr int kOptions = 5;
  constexpr int kFile = 6;
  if (argc <= kFile) return 1;
  if (std::strcmp(argv[kOptions], "log") == 0) startLog();
  return velka::bench::readRaster(argv[kFile]) > 0 ? 0 : 1;
}
