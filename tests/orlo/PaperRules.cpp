#include "orlo/PaperRules.h"

#include <algorithm>

#include "orlo/LiteralEncoder.h"

namespace velka::orlotest {
namespace {

class Rules {
 public:
  Rules(const DotPage& page, Feed feed, bool split, ModeRow mode)
      : page_(page), feed_(feed), split_(split), p_(passesAt(mode.dpi.vertical)) {
    const LiteralResult walk = encodeLiterally(page, feed, split, mode);
    if (walk.endedAtBottom) end_ = walk.bases.back();
  }

  // Without split: once a band's head reaches past the page, what lies below that
  // band's dots is dropped.
  [[nodiscard]] bool droppedByEndTest(int64_t y, bool red) const {
    if (end_ < 0) return false;
    const int64_t beyond = feed_ == Feed::Front ? (red ? 34 : 18) : (red ? 6 : 34);
    return y >= end_ + beyond * p_;
  }
  // Front feed, split, no black: the first 28p rows of red are dropped.
  [[nodiscard]] bool droppedOnRedOnlySplitPage(int64_t y, bool red) const {
    return red && split_ && feed_ == Feed::Front && page_.black.top < 0 &&
           y < page_.red.top + 28 * p_;
  }
  // Front feed, split, at 360 dpi: red after black lies one row low.
  [[nodiscard]] int64_t displacement(bool red) const {
    const bool low = red && split_ && feed_ == Feed::Front && page_.black.top >= 0 && p_ == 2;
    return low ? 1 : 0;
  }
  [[nodiscard]] bool dropped(int64_t y, bool red) const {
    return droppedByEndTest(y, red) || droppedOnRedOnlySplitPage(y, red);
  }

 private:
  const DotPage& page_;
  Feed feed_;
  bool split_;
  int p_;
  int64_t end_ = -1;
};

// Whether each dot of `a` has one of `b` in its row from `low` to `high` across.
bool eachHasANeighbour(const std::set<Dot>& a, const std::set<Dot>& b, int64_t low, int64_t high) {
  return std::ranges::all_of(a, [&](const Dot& dot) {
    const auto near = b.lower_bound({dot.first, dot.second + low});
    return near != b.end() && near->first == dot.first && near->second <= dot.second + high;
  });
}

}  // namespace

Expected expectedPaper(const DotPage& page, Feed feed, bool split, ModeRow mode) {
  const Rules rules(page, feed, split, mode);
  const int64_t across = kUnitsPerInch / mode.dpi.horizontal;
  const int64_t down = kUnitsPerInch / mode.dpi.vertical;
  Expected expected;
  for (int y = 0; y < page.height; ++y)
    for (int x = 0; x < page.width; ++x) {
      const auto at = [&](bool red) {
        return Dot{(y + rules.displacement(red)) * down, x * across};
      };
      if (page.isBlack(x, y) && !rules.dropped(y, false)) expected.black.insert(at(false));
      if (page.isRed(x, y) && !rules.dropped(y, true)) expected.red.insert(at(true));
    }
  return expected;
}

// At 80 and 90 columns an inch a block cannot start on every column: its position
// is cut to 1/60 inch, so its dots may lie less than that to the left.
bool samePaper(const std::set<Dot>& paper, const std::set<Dot>& expected, int horizontalDpi) {
  if (horizontalDpi != 80 && horizontalDpi != 90) return paper == expected;
  constexpr int64_t kSlack = kUnitsPerInch / 60 - 1;
  return eachHasANeighbour(expected, paper, -kSlack, 0) &&
         eachHasANeighbour(paper, expected, 0, kSlack);
}

}  // namespace velka::orlotest
