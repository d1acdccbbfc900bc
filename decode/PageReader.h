// A command stream to pages of blocks, each at its exact place.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Carriage.h"
#include "CommandReader.h"
#include "Head.h"
#include "JobEnd.h"

namespace velka::decode {

/// What the head struck in one go.
struct Block {
  int64_t x = 0;  ///< of its first column, units from the left edge
  int64_t y = 0;  ///< of the head's first dot, units from the top of the form
  Mode mode = {};
  int32_t colour = 0;  ///< 0 black, 1 red, 2 both (the Orlo head's pins decide)
  Bytes data;          ///< whole columns
  size_t offset = 0;   ///< in the stream
};

struct Page {
  std::vector<Block> blocks;  ///< those with columns, in the order struck
  int32_t lines = 0;          ///< length of the form in 1/6 inch; 0: not said
  size_t offset = 0;          ///< of its first command
  bool ended = false;         ///< by a form feed
  int64_t headY = 0;          ///< where the head's first dot was left before that
  int64_t paperStep = 0;      ///< divides every place that the paper was moved to; 0: to none
};

/// Reads a stream page by page, holding one at a time. A page is what a form feed
/// ends, and what was struck after the last one. Any bytes are safe to read; the
/// stream must outlive the pages.
class PageReader {
 public:
  PageReader(Bytes stream, Model model) : reader_(stream, model), size_(stream.size()) {}

  /// The next page; what a fault cut off counts as one where anything was struck.
  std::optional<Page> next();

  /// Why the stream is not sound, once next() has returned no page: a fault of its
  /// commands, or an end that is no job's.
  [[nodiscard]] const std::optional<Fault>& fault() const { return fault_; }

 private:
  std::optional<Page> last(Page page);

  CommandReader reader_;
  JobEnd end_;
  Carriage carriage_;
  size_t size_;
  bool done_ = false;
  std::optional<Fault> fault_;
};

/// Calls `visit(Ink, x, y)` for each dot of a block, struck twice or not, column by
/// column; x and y in units.
template <typename Visit>
void forEachDot(const Block& block, Model model, Visit visit) {
  const size_t width = block.mode.bytesPerColumn;
  for (size_t i = 0; i < block.data.size(); ++i) {
    const uint8_t bits = block.data[i];
    if (bits == 0) continue;
    const int64_t x = block.x + static_cast<int64_t>(i / width) * block.mode.columnPitch;
    for (int32_t bit = 0; bit < 8; ++bit) {
      if ((bits & (0x80U >> static_cast<unsigned>(bit))) == 0) continue;
      const Pin pin = pinOf(model, static_cast<int32_t>(i % width) * 8 + bit, block.colour);
      visit(pin.ink, x, block.y + int64_t{pin.slot} * block.mode.dotPitch);
    }
  }
}

}  // namespace velka::decode
