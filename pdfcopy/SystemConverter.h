// PDFs of documents that are none, made by the print system's own filters.
#pragma once

#include <string>

namespace velka {

/// Runs a filter of the print system (`name` in the folder filter of CUPS_SERVERBIN)
/// with this job's arguments on the document that `document` holds from its start, and
/// lets it write to `pdf`. Tells the scheduler and returns false when it cannot be run,
/// fails, or writes no PDF.
[[nodiscard]] bool makePdf(const std::string& name, char* const argv[], int document, int pdf);

}  // namespace velka
