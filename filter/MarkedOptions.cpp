#include "MarkedOptions.h"

#include <cups/cups.h>

#include <cstdlib>

namespace velka {

void markOptions(ppd_file_t* ppd, const char* options) noexcept {
  ppdMarkDefaults(ppd);
  cups_option_t* jobOptions = nullptr;
  const int count = cupsParseOptions(options, 0, &jobOptions);
  if (count == 0 || jobOptions == nullptr) return;
  cupsMarkOptions(ppd, count, jobOptions);
  cupsFreeOptions(count, jobOptions);
}

const char* queuePpd() noexcept {
  return std::getenv("PPD");  // NOLINT(concurrency-mt-unsafe): one thread reads it
}

OwnedPpd markedPpd(const char* options) noexcept {
  OwnedPpd ppd(ppdOpenFile(queuePpd()));
  if (ppd != nullptr) markOptions(ppd.get(), options);
  return ppd;
}

bool isOrloModel(const ppd_file_t* ppd) noexcept {
  constexpr int kOrloModelNumber = 2;
  return ppd != nullptr && ppd->model_number == kOrloModelNumber;
}

bool pagesComeFromPdf(ppd_file_t* ppd) noexcept {
  return ppd != nullptr && ppdIsMarked(ppd, "PdfPreprocess", "yes") != 0;
}

}  // namespace velka
