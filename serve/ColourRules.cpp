#include "ColourRules.h"

#include <algorithm>

namespace velka::serve {
namespace {

// From where the bound stands one way to its end.
std::optional<BoundStep> firstOther(const PrinterOptions& options, const Settings& settings,
                                    const PrinterOption& bound, int way, uint32_t rgb) {
  const Ink now = dotOf(rulesOf(options, settings), rgb).ink;
  const std::string value = valueOf(options, settings, bound.keyword);
  const auto at = std::ranges::find(bound.choices, value, &OptionChoice::name);
  const auto count = static_cast<int64_t>(bound.choices.size());
  for (int64_t i = at - bound.choices.begin() + way; i >= 0 && i < count; i += way) {
    const std::string& other = bound.choices[static_cast<size_t>(i)].name;
    const Ink ink =
        dotOf(rulesOf(options, changed(options, settings, bound.keyword, other)), rgb).ink;
    if (ink != now) return BoundStep{bound.keyword, other, ink};
  }
  return std::nullopt;
}

}  // namespace

InkRules rulesOf(const PrinterOptions& options, const Settings& settings) {
  return compileInkRules(options.record(settings));
}

InkDot dotOf(const InkRules& rules, uint32_t rgb) {
  return rules.dot(static_cast<uint8_t>(rgb), static_cast<uint8_t>(rgb >> 8U),
                   static_cast<uint8_t>(rgb >> 16U));
}

std::array<uint64_t, 3> inksOf(const InkRules& rules, const ColourGroup& group) {
  std::array<uint64_t, 3> inks{};
  for (const CountedColour& colour : group.members)
    inks.at(static_cast<size_t>(dotOf(rules, colour.rgb).ink)) += colour.pixels;
  return inks;
}

std::vector<BoundStep> boundSteps(const PrinterOptions& options, const Settings& settings,
                                  uint32_t rgb) {
  std::vector<BoundStep> steps;
  for (const char* keyword : kBounds) {
    const PrinterOption* bound = options.find(keyword);
    if (bound == nullptr) continue;
    for (const int way : {-1, 1})
      if (auto step = firstOther(options, settings, *bound, way, rgb)) steps.push_back(*step);
  }
  return steps;
}

}  // namespace velka::serve
