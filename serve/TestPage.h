// A page for whoever has no document at hand.
#pragma once

#include <cstdint>
#include <vector>

namespace velka::serve {

/// A PDF of one A4 page with what the two inks have to tell apart: text in many colours,
/// tints of red and black, thin lines, soft changes. The same bytes each time.
[[nodiscard]] std::vector<uint8_t> testPage();

}  // namespace velka::serve
