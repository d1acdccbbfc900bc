#include "PageTones.h"

#include <algorithm>
#include <cstdlib>

namespace velka::calibration {
namespace {

// A lighter red would count as white, or as a grey, before its other parts end.
constexpr int kBrightest = 249;

Colour colourOf(Ink ink, int depth) {
  const auto grey = static_cast<uint8_t>(depth);
  return ink == Ink::Black ? Colour{grey, grey, grey} : redOf(depth);
}

}  // namespace

InkDot inkOf(const InkRules& rules, Colour colour) {
  return rules.dot(colour.blue, colour.green, colour.red);
}

Colour redOf(int depth) {
  if (depth <= kBrightest) return {static_cast<uint8_t>(depth), 0, 0};
  const auto tint = static_cast<uint8_t>(depth - kBrightest);
  return {kBrightest, tint, tint};
}

PageTones::PageTones(const InkRules& rules, Ink ink) {
  const auto add = [&](Colour colour) {
    const InkDot dot = inkOf(rules, colour);
    if (dot.ink == ink) tones_.push_back({colour, dot.value});
  };
  const int count = ink == Ink::Black ? 256 : kReds;
  for (int depth = 0; depth < count; ++depth) add(colourOf(ink, depth));
  if (ink == Ink::Red) add(kRed);
  if (!tones_.empty()) addLighter();
}

void PageTones::addLighter() {
  const Tone lightest = *std::ranges::max_element(tones_, {}, &Tone::value);
  const int way = 255 - lightest.value;
  for (const int quarters : {3, 2, 1}) {
    const int value = 255 - way * quarters / 4;
    tones_.push_back({lightest.colour, static_cast<uint8_t>(value), quarters});
  }
  tones_.push_back({kWhite, 255, 0});
}

std::optional<PageTones::Tone> PageTones::nearest(uint8_t value) const {
  if (tones_.empty()) return std::nullopt;
  return *std::ranges::min_element(
      tones_, {}, [value](const Tone& tone) { return std::abs(tone.value - value); });
}

}  // namespace velka::calibration
