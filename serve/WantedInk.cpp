#include "WantedInk.h"

#include <algorithm>
#include <charconv>

namespace velka::serve {
namespace {

constexpr const char* kInks = "OutputColorType";
constexpr const char* kBoth = "BlackAndRed";

struct Bound {
  const char* least;
  const char* most;
  unsigned shift;  // of its channel in a colour
};
constexpr std::array<Bound, 3> kChannels{{{"RedMinValue", "RedMaxValue", 16},
                                          {"GreenMinValue", "GreenMaxValue", 8},
                                          {"BlueMinValue", "BlueMaxValue", 0}}};

int numberOf(const std::string& text) {
  int number = -1;
  (void)std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// The choice of a bound that lets a value in and lies nearest to it; as it stands where it
// lets it in already.
std::string lettingIn(const PrinterOptions& options, const Settings& settings,
                      const std::string& keyword, bool least, int value) {
  std::string best = valueOf(options, settings, keyword);
  const auto letsIn = [&](int bound) { return least ? bound <= value : bound >= value; };
  const PrinterOption* bound = options.find(keyword);
  if (bound == nullptr || letsIn(numberOf(best))) return best;
  for (const OptionChoice& choice : bound->choices) {
    const int number = numberOf(choice.name);
    const int now = numberOf(best);
    const bool nearer = !letsIn(now) || (least ? number > now : number < now);
    if (number >= 0 && letsIn(number) && nearer) best = choice.name;
  }
  return best;
}

Settings withColourIn(const PrinterOptions& options, Settings settings, uint32_t rgb) {
  for (const Bound& bound : kChannels) {
    const int value = static_cast<int>((rgb >> bound.shift) & 0xFFU);
    for (const bool least : {true, false}) {
      const char* keyword = least ? bound.least : bound.most;
      settings =
          changed(options, settings, keyword, lettingIn(options, settings, keyword, least, value));
    }
  }
  return settings;
}

// All ways worth a look.
std::vector<Settings> waysFrom(const PrinterOptions& options, const Settings& settings,
                               uint32_t rgb) {
  std::vector<Settings> ways = {settings, withColourIn(options, settings, rgb)};
  for (const BoundStep& step : boundSteps(options, settings, rgb))
    ways.push_back(changed(options, settings, step.keyword, step.value));
  return ways;
}

uint64_t turnedPixels(const InkRules& before, const InkRules& after,
                      std::span<const ColourGroup> page) {
  uint64_t pixels = 0;
  for (const Turned& turned : whatTurns(before, after, page))
    pixels += turned.toRed + turned.toBlack + turned.toNone;
  return pixels;
}

std::string whyNot(const InkRules& rules, uint32_t rgb) {
  if (dotOf(rules, rgb).ink == Ink::None)
    return "so light a colour counts as paper and is not printed, whatever the range";
  return "a grey prints as it does, whatever the range";
}

}  // namespace

std::variant<Settings, Refusal> settingsFor(const InkWish& wish, const PrinterOptions& options,
                                            const Settings& settings,
                                            std::span<const ColourGroup> page) {
  const InkRules before = rulesOf(options, settings);
  std::vector<Settings> ways = waysFrom(options, settings, wish.rgb);
  if (valueOf(options, settings, kInks) != kBoth) {
    const auto more = waysFrom(options, changed(options, settings, kInks, kBoth), wish.rgb);
    ways.insert(ways.end(), more.begin(), more.end());
  }
  const Settings* best = nullptr;
  uint64_t least = UINT64_MAX;
  for (const Settings& way : ways) {
    const InkRules after = rulesOf(options, way);
    if (dotOf(after, wish.rgb).ink != wish.ink) continue;
    const uint64_t pixels = turnedPixels(before, after, page);
    if (pixels >= least) continue;
    least = pixels;
    best = &way;
  }
  if (best == nullptr) return Refusal{whyNot(before, wish.rgb)};
  return *best;
}

std::vector<Turned> whatTurns(const InkRules& before, const InkRules& after,
                              std::span<const ColourGroup> page) {
  std::vector<Turned> all;
  for (size_t i = 0; i < page.size(); ++i) {
    Turned turned{i, 0, 0, 0};
    for (const CountedColour& colour : page[i].members) {
      const Ink ink = dotOf(after, colour.rgb).ink;
      if (ink == dotOf(before, colour.rgb).ink) continue;
      (ink == Ink::Red     ? turned.toRed
       : ink == Ink::Black ? turned.toBlack
                           : turned.toNone) += colour.pixels;
    }
    if (turned.toRed + turned.toBlack + turned.toNone > 0) all.push_back(turned);
  }
  return all;
}

}  // namespace velka::serve
