// Which ink a colour gets: asked of the same rules that the filter prints by.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "ColourCount.h"
#include "PrinterOptions.h"
#include "Separation.h"

namespace velka::serve {

/// The bounds of the colour range.
inline constexpr std::array kBounds{"RedMinValue",   "RedMaxValue",  "GreenMinValue",
                                    "GreenMaxValue", "BlueMinValue", "BlueMaxValue"};

[[nodiscard]] InkRules rulesOf(const PrinterOptions& options, const Settings& settings);

/// Of 0x00RRGGBB.
[[nodiscard]] InkDot dotOf(const InkRules& rules, uint32_t rgb);

/// Pixels of a group by their ink: none, black, red.
[[nodiscard]] std::array<uint64_t, 3> inksOf(const InkRules& rules, const ColourGroup& group);

/// The nearest choice of a bound, to either side, with which a colour prints otherwise.
struct BoundStep {
  std::string keyword;
  std::string value;
  Ink ink = Ink::None;  ///< what it gets then
};
[[nodiscard]] std::vector<BoundStep> boundSteps(const PrinterOptions& options,
                                                const Settings& settings, uint32_t rgb);

}  // namespace velka::serve
