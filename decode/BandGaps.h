// White inside the print of the standard head that the printed page cannot have.
#pragma once

#include "PageCheck.h"

namespace velka::decode {

/// Adds the gaps of a page, whose blocks are all of one mode, to its flaws; those known
/// already tell how the page counts its rows.
void findGaps(const Page& page, PageFlaws& flaws);

}  // namespace velka::decode
