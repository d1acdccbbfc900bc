#include "BandGaps.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <vector>

#include "BlockSpan.h"

namespace velka::decode {
namespace {

int32_t pinsOf(const Block& block) {
  return 8 * block.mode.bytesPerColumn;
}

int64_t headHeight(const Block& block) {
  return int64_t{pinsOf(block)} * block.mode.dotPitch;
}

// Places across of the dots of one pin.
void addColumns(const Block& block, int32_t pin, std::vector<int64_t>& places) {
  const size_t bytes = block.mode.bytesPerColumn;
  for (int64_t column = 0; column < columnsOf(block); ++column) {
    const uint8_t byte =
        block.data[static_cast<size_t>(column) * bytes + static_cast<size_t>(pin / 8)];
    if ((byte & (0x80U >> static_cast<unsigned>(pin % 8))) != 0) {
      places.push_back(block.x + column * block.mode.columnPitch);
    }
  }
}

// Whether at least half of the shorter edge's dots go on in the other.
bool strokesGoOn(std::vector<int64_t> above, std::vector<int64_t> below) {
  for (auto* edge : {&above, &below}) {
    std::ranges::sort(*edge);
    edge->erase(std::unique(edge->begin(), edge->end()), edge->end());
  }
  std::vector<int64_t> both;
  std::ranges::set_intersection(above, below, std::back_inserter(both));
  return !both.empty() && 2 * both.size() >= std::min(above.size(), below.size());
}

// Blocks struck from about one place of the paper: passes and inks.
struct Band {
  int64_t top;
  std::vector<const Block*> blocks;

  [[nodiscard]] std::vector<int64_t> edge(int64_t y) const {
    std::vector<int64_t> places;
    for (const Block* block : blocks) {
      const int64_t pin = (y - block->y) / block->mode.dotPitch;
      const bool strikes = y >= block->y && (y - block->y) % block->mode.dotPitch == 0;
      if (strikes && pin < pinsOf(*block)) addColumns(*block, static_cast<int32_t>(pin), places);
    }
    return places;
  }
};

std::vector<Band> bandsOf(const Page& page) {
  std::vector<const Block*> blocks;
  for (const Block& block : page.blocks) blocks.push_back(&block);
  std::ranges::stable_sort(blocks, {}, [](const Block* block) { return block->y; });
  std::vector<Band> bands;
  for (const Block* block : blocks) {
    const bool next = bands.empty() || block->y >= bands.back().top + headHeight(*block) / 2;
    if (next) bands.push_back({block->y, {}});
    bands.back().blocks.push_back(block);
  }
  return bands;
}

void addGap(int64_t at, int64_t width, PageFlaws& flaws) {
  if (flaws.gaps == 0 || at < flaws.firstGap) flaws.firstGap = at;
  flaws.widestGap = std::max(flaws.widestGap, width);
  ++flaws.gaps;
}

void takeGaps(const PageFlaws& found, PageFlaws& flaws) {
  flaws.gaps = found.gaps;
  flaws.widestGap = found.widestGap;
  flaws.firstGap = found.firstGap;
}

// Two passes a row apart, whose way down nobody took back. One white row between
// strokes may be meant, even two; hardly three, where no bands touch, and not one where
// white is sent that nobody needs.
void findRowsBetweenBands(const std::vector<Band>& bands, int64_t row, bool whiteIsSent,
                          PageFlaws& flaws) {
  const int64_t high = headHeight(*bands.front().blocks.front());
  PageFlaws found;
  uint64_t touching = 0;
  for (size_t i = 1; i < bands.size(); ++i) {
    const int64_t off = bands[i].top - bands[i - 1].top - high;
    touching += off == 0 ? 1 : 0;
    if (off != row && off != 2 * row) continue;
    const int64_t end = bands[i - 1].top + high;
    if (strokesGoOn(bands[i - 1].edge(end - row), bands[i].edge(bands[i].top))) {
      addGap(end, off, found);
    }
  }
  const uint64_t least = whiteIsSent ? 1 : 3;
  if (found.gaps >= least && found.gaps > touching) takeGaps(found, flaws);
}

// A head of eight dots that moves on as if it had 24.
void findSlicesLeftOut(const std::vector<Band>& bands, PageFlaws& flaws) {
  constexpr int64_t kRowsOfBand = 24;
  const Block& first = *bands.front().blocks.front();
  const int64_t row = first.mode.dotPitch;
  const int64_t high = headHeight(first);
  PageFlaws found;
  for (size_t i = 1; i < bands.size(); ++i) {
    const int64_t rows = (bands[i].top - bands[i - 1].top) / row;
    if (rows < kRowsOfBand - 1) return;  // one more where red went a row up
    if (rows > kRowsOfBand) continue;
    const int64_t end = bands[i - 1].top + high;
    if (bands[i - 1].edge(end - row).empty() || bands[i].edge(bands[i].top).empty()) continue;
    addGap(end, bands[i].top - end, found);
  }
  if (found.gaps >= 2) takeGaps(found, flaws);
}

// How far white columns reach that come before the ink of each block; those that
// somebody leaves out where he can are fewer than 1/60 inch and a column.
bool sendsWhiteBeforeInk(const Page& page) {
  constexpr int64_t kMostLeft = 6;
  return std::ranges::all_of(page.blocks, [](const Block& block) {
    if (block.mode.bytesPerColumn == 1) return false;
    const auto white = std::ranges::find_if(block.data, [](uint8_t byte) { return byte != 0; });
    return (white - block.data.begin()) / block.mode.bytesPerColumn >= kMostLeft;
  });
}

// Follows the bands in the order struck. Each ink is taken to count its own way: a
// band of black stands where the black before it stood, and as much lower as the page
// has it, and lower still by all the way that red has made since.
class CountedWays {
 public:
  explicit CountedWays(const Page& page) {
    for (const Block& block : page.blocks) {
      if (block.y < reached_ - tolerance(block)) splitOrMoved_ = true;
      reached_ = block.y;
      block.colour == 1 ? takeRed(block) : takeBlack(block);
    }
  }

  // The gaps, where every place on the page agrees.
  void addTo(PageFlaws& flaws) const {
    if (contradicted_ || splitOrMoved_) return;
    for (const auto& [at, width] : gaps_) addGap(at, width, flaws);
  }

 private:
  struct Gap {
    int64_t at;
    int64_t width;
  };

  // Red over black goes a row up, and passes a row down.
  static int64_t tolerance(const Block& block) { return 3 * int64_t{block.mode.dotPitch}; }
  static int64_t bandHeight(const Block& block) { return 24 * int64_t{block.mode.dotPitch}; }

  void takeRed(const Block& block) {
    if (block.y < black_ + bandHeight(block) - tolerance(block) && blackStruck_) return;
    if (block.y > tolerance(block)) red_ = block.y;
  }

  void takeBlack(const Block& block) {
    if (red_) {
      const int64_t forgotten = *red_ - black_;
      const int64_t way = block.y - black_;
      contradicted_ = contradicted_ || way < 2 * forgotten + bandHeight(block) - tolerance(block);
      gaps_.push_back({*red_ + bandHeight(block), forgotten});
    }
    red_.reset();
    black_ = block.y;
    blackStruck_ = true;
  }

  int64_t black_ = 0;  // where its last band stands, or the page's top
  bool blackStruck_ = false;
  std::optional<int64_t> red_;  // the last band without black since
  int64_t reached_ = 0;
  bool splitOrMoved_ = false;
  bool contradicted_ = false;
  std::vector<Gap> gaps_;
};

}  // namespace

void findGaps(const Page& page, PageFlaws& flaws) {
  const std::vector<Band> bands = bandsOf(page);
  int64_t row = page.paperStep;
  for (const Block& block : page.blocks) {
    row = std::gcd(std::gcd(row, block.mode.dotPitch), block.y);
  }
  const Mode& mode = page.blocks.front().mode;
  const bool whiteIsSent = sendsWhiteBeforeInk(page);
  if (2 * row == mode.dotPitch) findRowsBetweenBands(bands, row, whiteIsSent, flaws);
  if (mode.bytesPerColumn == 1) findSlicesLeftOut(bands, flaws);
  if (flaws.mergedRows > 0 || flaws.gaps > 0 || whiteIsSent) {
    CountedWays(page).addTo(flaws);
  }
}

}  // namespace velka::decode
