#include "MarkedOptions.h"

#include <cups/cups.h>

namespace velka {

void markOptions(ppd_file_t* ppd, const char* options) noexcept {
  ppdMarkDefaults(ppd);
  cups_option_t* jobOptions = nullptr;
  const int count = cupsParseOptions(options, 0, &jobOptions);
  if (count == 0 || jobOptions == nullptr) return;
  cupsMarkOptions(ppd, count, jobOptions);
  cupsFreeOptions(count, jobOptions);
}

bool pagesComeFromPdf(ppd_file_t* ppd) noexcept {
  return ppd != nullptr && ppdIsMarked(ppd, "PdfPreprocess", "yes") != 0;
}

}  // namespace velka
