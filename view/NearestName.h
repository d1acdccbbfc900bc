// Names that somebody may have meant.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velka::view {

/// The one of `names` that `written` is a slip of, upper and lower case alike: a letter
/// or two (of three letters and more for each) left out, added, replaced or exchanged
/// with its neighbour. None where no name is so near.
[[nodiscard]] std::optional<std::string> nearestName(const std::string& written,
                                                     const std::vector<std::string>& names);

}  // namespace velka::view
