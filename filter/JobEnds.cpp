#include "JobEnds.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "FixedText.h"
#include "MarkedOptions.h"
#include "OwnFile.h"
#include "PageMemory.h"
#include "PlainNames.h"
#include "StandardDescriptors.h"
#include "rastovelka.h"

volatile std::sig_atomic_t Canceled = 0;

namespace velka {
namespace {

FixedText earlyCopy;

extern "C" void endEarly(int signal) {
  removeOwnFile(earlyCopy.text());
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

void dropCopyOnEarlyEnd(int argc, char* argv[]) noexcept {
  if (argc < 2 || argv == nullptr || !isPlainName(argv[1])) return;
  earlyCopy = formatText("%s%s.pdf", kJobFilePrefix.data(), argv[1]);
  struct sigaction end = {};
  end.sa_handler = endEarly;
  if (!earlyCopy.cut) sigaction(SIGTERM, &end, nullptr);
}

}  // namespace

void prepareProcess(int argc, char* argv[]) noexcept {
  keepFreedMemory();
  fillStandardDescriptors();
  // A limit on the size of files shortens the log, not the job.
  std::signal(SIGXFSZ, SIG_IGN);
  dropCopyOnEarlyEnd(argc, argv);
  std::setvbuf(stderr, nullptr, _IONBF, 0);
}

void installSignals() noexcept {
  struct sigaction cancel = {};
  cancel.sa_handler = CancelJob;
  cancel.sa_flags = SA_RESTART;
  sigaction(SIGTERM, &cancel, nullptr);
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignore, nullptr);
  // Ignored, as some callers leave it, it would take the tools' status away.
  struct sigaction usual = {};
  usual.sa_handler = SIG_DFL;
  sigaction(SIGCHLD, &usual, nullptr);
}

}  // namespace velka

int OpenPageStream(int argc, char* argv[], int* fd, cups_raster_t** raster) noexcept {
  constexpr int kWithoutFile = 6;
  constexpr int kWithFile = 7;
  if (argv == nullptr || argv[0] == nullptr || fd == nullptr || raster == nullptr) return 1;
  if (argc != kWithoutFile && argc != kWithFile) return 1;
  *fd = STDIN_FILENO;
  if (argc == kWithFile) {
    *fd = open(argv[6], O_RDONLY | O_CLOEXEC);
    if (*fd < 0) {
      sleep(1);
      return 1;
    }
  }
  *raster = cupsRasterOpen(*fd, CUPS_RASTER_READ);
  if (*raster != nullptr) return 0;
  std::fputs("cupsRasterOpen failed.", stderr);
  return 1;
}

void InitializeSetting(const char* options, ppd_file_t** ppd) noexcept {
  if (ppd == nullptr) return;
  *ppd = ppdOpenFile(std::getenv("PPD"));  // NOLINT(concurrency-mt-unsafe): one thread reads it
  if (*ppd == nullptr) {
    int line = 0;
    const ppd_status_t status = ppdLastError(&line);
    std::fputs("The PPD file could not be opened.", stderr);
    std::fprintf(stderr, "%s on line %d.", ppdErrorString(status), line);
    return;
  }
  velka::markOptions(*ppd, options);
}

void CancelJob(int /*signal*/) noexcept {
  Canceled = 1;
}

int Shutdown(const char* pdfPath, ppd_file_t* ppd, cups_raster_t* raster, int fd) noexcept {
  if (raster == nullptr) return 1;
  if (ppd == nullptr || pdfPath == nullptr) return 0;
  if (velka::isRemovable(pdfPath)) std::remove(pdfPath);
  ppdClose(ppd);
  cupsRasterClose(raster);
  return fd == 0 ? 0 : close(fd);
}
