#include "BandWalk.h"

#include <algorithm>
#include <limits>

namespace velka {
namespace {

constexpr int64_t kAboveAllRows = std::numeric_limits<int64_t>::min();

}  // namespace

bool BandWalk::prepare() noexcept {
  return blackRows_.scan(black_) && redRows_.scan(red_) &&
         columns_.allocate(std::max(black_.width, red_.width));
}

bool BandWalk::move(int64_t rows) const noexcept {
  return rows == 0 || sink_.moveY(static_cast<short>(resolution_.verticalDpi), rows);
}

std::optional<int64_t> BandWalk::print(const Sweep& sweep, int64_t base) noexcept {
  if (!printBand(sweep, base, std::nullopt)) return std::nullopt;
  while (const auto next = nextBase(sweep, base)) {
    // The passes of a band leave the head below its base.
    const int64_t stand = base + resolution_.passes - 1;
    if (!move(*next - stand) || !printBand(sweep, *next, base)) return std::nullopt;
    base = *next;
    // Deliberate: what the ink that prints higher still has above the page's end is
    // left out. At 360 dpi the test also takes the head for a row longer than its two
    // passes are, so the page's last row can be lost in the other ink, too.
    if (sweep.endsAtPageBottom && reachesPageBottom(base)) break;
  }
  return base;
}

std::optional<int64_t> BandWalk::nextBase(const Sweep& sweep, int64_t base) const noexcept {
  const auto black = sweep.black ? nextBaseOf(blackInk(), base) : std::nullopt;
  const auto red = sweep.red ? nextBaseOf(redInk(), base) : std::nullopt;
  if (black && red) return std::min(*black, *red);
  return black ? black : red;
}

std::optional<int64_t> BandWalk::nextBaseOf(const Ink& ink, int64_t base) const noexcept {
  const auto row = ink.rows.firstFrom(base + ink.nozzles.beyond(resolution_.passes));
  if (!row) return std::nullopt;
  return *row - ink.nozzles.offset(resolution_.passes);
}

bool BandWalk::reachesPageBottom(int64_t base) const noexcept {
  const int64_t passes = resolution_.passes;
  return base + kHeadSlots * passes + passes - 1 >= std::max(black_.rows, red_.rows);
}

bool BandWalk::printBand(const Sweep& sweep, int64_t base,
                         std::optional<int64_t> previous) noexcept {
  const int passes = resolution_.passes;
  const int64_t blackFrom = previous && layout_.skipsCoveredBlack
                                ? *previous + layout_.black.beyond(passes)
                                : kAboveAllRows;
  for (int pass = 0; pass < passes; ++pass) {
    columns_.clear();
    if (sweep.black) addSlots(blackInk(), base + pass, blackFrom);
    if (sweep.red) addSlots(redInk(), base + pass, kAboveAllRows);
    if (!sendRuns()) return false;
    if (previous && !sink_.append({&kCarriageReturn, 1})) return false;
    if (pass + 1 < passes && !move(1)) return false;
  }
  return true;
}

void BandWalk::addSlots(const Ink& ink, int64_t firstRow, int64_t coveredTo) noexcept {
  const int64_t passes = resolution_.passes;
  for (int i = 0; i < ink.nozzles.count; ++i) {
    const int64_t row = firstRow + passes * (ink.nozzles.firstSlot + i);
    if (row >= coveredTo && ink.rows.isInked(row))
      columns_.addRow(ink.plane.row(row), ink.nozzles.firstBit + i);
  }
}

bool BandWalk::sendRuns() noexcept {
  if (columns_.isBlank()) return true;
  const auto bytes = columns_.pack();
  PrintRuns runs(bytes, columns_.bytesPerColumn(), std::max(black_.width, red_.width),
                 {resolution_.step(), kShortestRunSpan, kMostBlankColumns, layout_.clampsRuns});
  while (const auto run = runs.next()) {
    const auto from = static_cast<size_t>(run->left) * PassColumns::kColumnBytes;
    const auto size = static_cast<size_t>(run->right - run->left + 1) * PassColumns::kColumnBytes;
    if (!sink_.moveToX(resolution_.xDivisor(), static_cast<int>(run->left)) ||
        !appendBlock(sink_, resolution_.mode, *run, bytes.subspan(from, size)))
      return false;
  }
  return true;
}

}  // namespace velka
