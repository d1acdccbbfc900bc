// The choices a job is printed with: the queue's defaults, then the job's own.
#pragma once

#include <cups/ppd.h>

#include <memory>

namespace velka {

/// Marks the PPD's defaults and over them the choices of a job's option text (null
/// counts as empty).
void markOptions(ppd_file_t* ppd, const char* options) noexcept;

struct PpdCloser {
  void operator()(ppd_file_t* ppd) const noexcept { ppdClose(ppd); }
};

using OwnedPpd = std::unique_ptr<ppd_file_t, PpdCloser>;

/// Where the queue's PPD is, as the scheduler says it; null where it says nothing.
[[nodiscard]] const char* queuePpd() noexcept;

/// The queue's PPD with the job's options, as the printing filter has it; none where it
/// cannot be opened.
[[nodiscard]] OwnedPpd markedPpd(const char* options) noexcept;

/// Whether the PPD is the Orlo model's; without a PPD the standard model prints.
[[nodiscard]] bool isOrloModel(const ppd_file_t* ppd) noexcept;

/// Whether the marked choices take the pages from the PDF copy of the job. False
/// without a PPD.
[[nodiscard]] bool pagesComeFromPdf(ppd_file_t* ppd) noexcept;

}  // namespace velka
