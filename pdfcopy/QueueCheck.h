// Whether a queue can print pages from the PDF copy at all.
#pragma once

#include <cups/ppd.h>

#include <string>

namespace velka {

/// Why pages could come out white although the copy is made, and what to do, in words:
/// a tool that draws them is not on the PATH, which the printing filter shares, or the
/// queue's PPD is older than the filters: its FileVersion is below the first two numbers
/// of theirs. One without is taken for the right one. Empty where nothing is amiss.
[[nodiscard]] std::string whyPagesWouldBeWhite(ppd_file_t* ppd);

}  // namespace velka
