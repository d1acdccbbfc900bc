#include "OrloSweeps.h"

#include <algorithm>
#include <optional>

#include "BandWalk.h"
#include "CheckedMath.h"

namespace velka {
namespace {

constexpr Sweep kBothInks = {true, true, true};
constexpr Sweep kBlackSweep = {true, false, false};
constexpr Sweep kRedSweep = {false, true, false};

// Only whole rows that the plane really holds.
DotPlane dotPlane(const OrloPlane& plane, int64_t width, int64_t height) noexcept {
  if (plane.data == nullptr || width <= 0) return {nullptr, 0, 0, 0};
  const int64_t rows = std::clamp<int64_t>(height, 0, plane.size / width);
  return {plane.data, width, rows, std::min(rows, plane.filledRows(width))};
}

BandWalk makeWalk(const OrloInks& page, const OrloSweep& sweep, const CommandSink& sink) noexcept {
  return {sweep.layout, sweep.resolution, dotPlane(page.black, page.width, page.height),
          dotPlane(page.red, page.width, page.height), sink};
}

// Where the head must stand for an ink's first row to lie under its first dot.
int64_t firstBaseOf(const OrloPlane& plane, const NozzleGroup& nozzles, int passes) noexcept {
  return int64_t{plane.top} - nozzles.offset(passes);
}

// The highest base that any ink asks for.
std::optional<int64_t> firstBase(const OrloInks& page, const HeadLayout& layout,
                                 int passes) noexcept {
  const int64_t black = firstBaseOf(page.black, layout.black, passes);
  const int64_t red = firstBaseOf(page.red, layout.red, passes);
  if (page.black.isEmpty() && page.red.isEmpty()) return std::nullopt;
  if (page.black.isEmpty()) return red;
  if (page.red.isEmpty()) return black;
  return std::min(black, red);
}

// The black sweep, and from there to the first red row.
bool printBlackSweep(BandWalk& walk, const OrloInks& page, const OrloSweep& sweep,
                     int32_t* reached) noexcept {
  const int passes = sweep.resolution.passes;
  const NozzleGroup& nozzles = sweep.layout.black;
  const int64_t base = firstBaseOf(page.black, nozzles, passes);
  if (!walk.move(base - sweep.currentRow)) return false;
  const auto last = walk.print(kBlackSweep, base);
  if (!last) return false;
  // Deliberate: front feed counts from the last band's base, not from where the
  // second pass left the head, so at 360 dpi its red lies a row low.
  int64_t stand = *last;
  if (reached != nullptr) {
    *reached = low32(static_cast<uint64_t>(*last + nozzles.beyond(passes)));
    stand = *reached - nozzles.beyond(passes) + passes - 1;
  }
  return page.red.isEmpty() || walk.move(firstBaseOf(page.red, sweep.layout.red, passes) - stand);
}

}  // namespace

bool printUnsplit(const OrloInks& page, const OrloSweep& sweep, const CommandSink& sink) noexcept {
  const auto base = firstBase(page, sweep.layout, sweep.resolution.passes);
  BandWalk walk = makeWalk(page, sweep, sink);
  return base && walk.prepare() && walk.move(*base - sweep.currentRow) &&
         walk.print(kBothInks, *base);
}

bool printSplit(const OrloInks& page, const OrloSweep& sweep, bool withoutBlack, int32_t* reached,
                const CommandSink& sink) noexcept {
  BandWalk walk = makeWalk(page, sweep, sink);
  if (!walk.prepare()) return false;
  if (!withoutBlack && !page.black.isEmpty() && !printBlackSweep(walk, page, sweep, reached))
    return false;
  if (page.red.isEmpty()) return true;
  if (!page.black.isEmpty()) {
    const int64_t base = firstBaseOf(page.red, sweep.layout.red, sweep.resolution.passes);
    return walk.print(kRedSweep, base).has_value();
  }
  // Deliberate: with red alone the head stands at the red top itself; in front
  // feed the rows between there and the red dots are lost.
  const int64_t redTop = page.red.top;
  const int64_t start = withoutBlack ? sweep.currentRow : 0;
  return walk.move(redTop - start) && walk.print(kRedSweep, redTop);
}

}  // namespace velka
