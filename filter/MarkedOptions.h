// The choices a job is printed with: the queue's defaults, then the job's own.
#pragma once

#include <cups/ppd.h>

namespace velka {

/// Marks the PPD's defaults and over them the choices of a job's option text (null
/// counts as empty).
void markOptions(ppd_file_t* ppd, const char* options) noexcept;

/// Whether the marked choices take the pages from the PDF copy of the job. False
/// without a PPD.
[[nodiscard]] bool pagesComeFromPdf(ppd_file_t* ppd) noexcept;

}  // namespace velka
