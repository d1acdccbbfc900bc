// The nearest settings with which a colour prints in another ink.
#pragma once

#include <span>
#include <string>
#include <variant>
#include <vector>

#include "ColourRules.h"

namespace velka::serve {

struct InkWish {
  uint32_t rgb = 0;
  Ink ink = Ink::Red;  ///< never none: what prints is not for the range to say
};

/// Of all ways to grant the wish by moving bounds, and printing with both inks, the one that
/// changes least of the page; those settings, or why there are none.
[[nodiscard]] std::variant<Settings, Refusal> settingsFor(const InkWish& wish,
                                                          const PrinterOptions& options,
                                                          const Settings& settings,
                                                          std::span<const ColourGroup> page);

/// Pixels of a group that print otherwise with other rules.
struct Turned {
  size_t group = 0;
  uint64_t toRed = 0;
  uint64_t toBlack = 0;
  uint64_t toNone = 0;
};
[[nodiscard]] std::vector<Turned> whatTurns(const InkRules& before, const InkRules& after,
                                            std::span<const ColourGroup> page);

}  // namespace velka::serve
