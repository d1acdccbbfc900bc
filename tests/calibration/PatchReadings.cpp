// The pages whose patches are looked at.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "ColoursPage.h"
#include "Readings.h"
#include "TonesPage.h"

namespace velka::calibrationtest {
namespace {

using namespace velka::calibration;

// The share of a patch's inner dots that an ink strikes.
double coverage(const std::vector<Dot>& dots, const DotBox& box, bool red) {
  constexpr double kEdge = 3;
  const Field inner{std::llround(box.left + kEdge) * kCoarse,
                    std::llround(box.top + kEdge) * kCoarse,
                    std::llround(box.left + box.width - kEdge) * kCoarse,
                    std::llround(box.top + box.height - kEdge) * kCoarse};
  const auto struck = std::ranges::count_if(
      dots, [&](const Dot& dot) { return dot.red == red && inner.holds(dot); });
  const auto all = (inner.right - inner.left) / kCoarse * ((inner.bottom - inner.top) / kCoarse);
  return static_cast<double>(struck) / static_cast<double>(all);
}

}  // namespace

void compareTones(const std::string& option, const std::string& value,
                  const std::vector<Dot>& before, const std::vector<Dot>& after) {
  constexpr double kAlike = 0.035;
  // Where nearly all dots are struck, error diffusion takes rows until it leaves one out.
  constexpr double kDark = 0.9;
  constexpr double kAlikeInTheDark = 0.07;
  const std::vector<TonePatch> patches = tonePatches(defaultOemdev[0]);
  const std::string named = option + "=" + value;
  int changed = 0;
  int compared = 0;
  for (const TonePatch& patch : patches) {
    if (patch.option != option || patch.value != value) continue;
    const auto now = std::ranges::find_if(patches, [&](const TonePatch& other) {
      return other.option == option && other.shade == patch.shade && other.now;
    });
    const bool red = patch.ink == Ink::Red;
    const double promised = coverage(before, patch.box, red);
    const double kept = coverage(after, now->box, red);
    std::printf("%s shade %d: %.3f promised, %.3f kept\n", option.c_str(), patch.shade, promised,
                kept);
    if (std::abs(promised - kept) > (promised < kDark ? kAlike : kAlikeInTheDark))
      complain(named + " is another tone");
    if (std::abs(kept - coverage(before, now->box, red)) > kAlike) ++changed;
    ++compared;
  }
  if (compared != 4 || changed < 2) complain(named + " changes nothing");
}

namespace {

// The ink of most of a patch's dots.
bool isStruckRed(const std::vector<Dot>& dots, const DotBox& box) {
  return coverage(dots, box, true) > coverage(dots, box, false);
}

}  // namespace

void tellColours(const std::vector<Dot>& dots) {
  for (const ColourRow& row : colourRows(defaultOemdev[0])) {
    if (row.option.empty()) continue;
    std::vector<std::string> red;
    for (const ColourPatch& patch : row.patches) {
      if (isStruckRed(dots, patch.box)) red.push_back(patch.number);
    }
    const bool least = row.option == "RedMinValue";
    const std::string number = red.empty() ? "none" : least ? red.front() : red.back();
    std::printf("%s%s=%s", least ? "" : " ", row.option.c_str(), number.c_str());
  }
  std::printf("\n");
}

void checkInks(const std::vector<Dot>& dots, const tagOEMCFG& options) {
  int wrong = 0;
  for (const ColourRow& row : colourRows(options)) {
    for (const ColourPatch& patch : row.patches) {
      const double red = coverage(dots, patch.box, true);
      const double black = coverage(dots, patch.box, false);
      const bool asMeant = patch.ink == Ink::Red     ? red > 0 && black == 0
                           : patch.ink == Ink::Black ? black > 0 && red == 0
                                                     : red == 0 && black == 0;
      if (!asMeant) ++wrong;
    }
  }
  if (wrong > 0) complain(std::to_string(wrong) + " patches in another ink");
}

}  // namespace velka::calibrationtest
