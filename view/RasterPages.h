// Pages of a raster that a printing filter reads.
#pragma once

#include <string>

#include "Arguments.h"
#include "Outcome.h"

namespace velka::view {

/// Writes those pages of the raster in file `from` that are `wanted` to file `to`, in
/// their order, and counts all in `pages`. A page that is cut off is one that lacks rows
/// and is written as it is.
[[nodiscard]] Problem keepPages(const std::string& from, const PageRange& wanted,
                                const std::string& to, uint64_t& pages);

}  // namespace velka::view
