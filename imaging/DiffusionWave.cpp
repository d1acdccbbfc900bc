#include "DiffusionWave.h"

#include <cstring>

#include "ByteLanes.h"

namespace velka {
namespace {

constexpr size_t kSkew = 2;  // columns from a row to the one above
constexpr size_t kLag = kSkew * (kLanes - 1);

/// Every lane takes what the one above it holds, the first one 0.
Lanes oneDown(Lanes a) noexcept {
  return __builtin_shufflevector(Lanes{}, a, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28,
                                 29, 30);
}

/// floor(error x weight / 16) for the weights of the four neighbours. With the halves of
/// a byte apart, no product leaves its byte.
struct Shares {
  Lanes seven;
  Lanes five;
  Lanes three;
  Lanes one;

  explicit Shares(Lanes error) noexcept {
    one = error >> 4;
    const Lanes low = error & 15;
    const Lanes high2 = one + one;
    const Lanes low2 = low + low;
    const Lanes high4 = high2 + high2;
    const Lanes low4 = low2 + low2;
    three = high2 + one + ((low2 + low) >> 4);
    five = high4 + one + ((low4 + low) >> 4);
    seven = high4 + high4 - one + ((low4 + low4 - low) >> 4);
  }
};

/// Sixteen steps of the wave: a vector holds what the lanes read at one step.
struct Block {
  Lanes at[kLanes];
  bool paper = false;  ///< known to be 255 throughout
};

bool isPaper(const Block& block) noexcept {
  Lanes every = block.at[0];
  for (const Lanes& row : block.at) every &= row;
  return isFull(every);
}

/// Rows become columns and columns rows.
Block transposed(Block block) noexcept {
  for (int round = 0; round < 4; ++round) {
    Block next;
    for (size_t i = 0; i < kLanes / 2; ++i) {
      next.at[2 * i] = zipFirst(block.at[i], block.at[i + kLanes / 2]);
      next.at[2 * i + 1] = zipLast(block.at[i], block.at[i + kLanes / 2]);
    }
    block = next;
  }
  return block;
}

/// The part of a lane's sixteen columns from `x` on that lies on the page.
struct Inside {
  size_t first = 0;   ///< of the sixteen
  size_t column = 0;  ///< of the page
  size_t size = 0;

  Inside(ptrdiff_t x, size_t columns) noexcept {
    const auto page = static_cast<ptrdiff_t>(columns);
    const auto lanes = static_cast<ptrdiff_t>(kLanes);
    const ptrdiff_t begin = x < 0 ? -x : 0;
    const ptrdiff_t end = page - x < lanes ? page - x : lanes;
    if (begin >= end) return;
    first = static_cast<size_t>(begin);
    column = static_cast<size_t>(x + begin);
    size = static_cast<size_t>(end - begin);
  }
};

/// One group of sixteen rows.
class Group {
 public:
  Group(const DiffusionRows& plane, size_t top, uint8_t threshold) noexcept
      : in_(plane.in + top * plane.stride),
        out_(plane.out + top * plane.stride),
        stride_(plane.stride),
        rowStep_(static_cast<ptrdiff_t>(plane.stride) - static_cast<ptrdiff_t>(kSkew)),
        columns_(plane.columns),
        threshold_(allLanes(threshold)),
        writesInput_(plane.in != plane.out) {}

  void diffuse() noexcept {
    const size_t steps = columns_ + kLag;
    Block now = read(0);
    here_ = now.at[0];
    next_ = now.at[1];
    afterNext_ = now.at[2];
    for (size_t step = 0; step < steps; step += kLanes) {
      const Block ahead = read(step + kLanes);
      if (isQuiet(now)) {
        if (writesInput_) write(step, out_, now.paper ? now : transposed(now), kLanes - 1);
        here_ = ahead.at[0];
        next_ = ahead.at[1];
        afterNext_ = ahead.at[2];
      } else if (isEdge(step)) {
        run<true>(step, now, ahead);
      } else {
        run<false>(step, now, ahead);
      }
      now = ahead;
    }
  }

 private:
  [[nodiscard]] ptrdiff_t columnOf(size_t step, size_t lane) const noexcept {
    return static_cast<ptrdiff_t>(step) - static_cast<ptrdiff_t>(kSkew * lane);
  }

  [[nodiscard]] bool isEdge(size_t step) const noexcept {
    return step < kLag || step + kLanes > columns_;
  }

  /// What the lanes read from `step` on; paper beside the page.
  [[nodiscard]] Block read(size_t step) const noexcept {
    Block rows = isEdge(step) ? readEdge(step) : readInside(step);
    rows.paper = isPaper(rows);
    return rows.paper ? rows : transposed(rows);
  }

  [[nodiscard]] Block readInside(size_t step) const noexcept {
    Block rows;
    const uint8_t* from = in_ + step;
    for (Lanes& row : rows.at) {
      row = loadLanes(from);
      from += rowStep_;
    }
    return rows;
  }

  [[nodiscard]] Block readEdge(size_t step) const noexcept {
    Block rows;
    for (size_t lane = 0; lane < kLanes; ++lane) {
      uint8_t bytes[kLanes];
      std::memset(bytes, 0xFF, sizeof bytes);
      const Inside inside(columnOf(step, lane), columns_);
      const uint8_t* row = in_ + lane * stride_;
      if (inside.size > 0) std::memcpy(bytes + inside.first, row + inside.column, inside.size);
      rows.at[lane] = loadLanes(bytes);
    }
    return rows;
  }

  /// The first `lanes` rows of a block, as far as they lie on the page.
  void write(size_t step, uint8_t* plane, const Block& rows, size_t lanes) const noexcept {
    for (size_t lane = 0; lane < lanes; ++lane) writeRow(step, plane, rows, lane);
  }

  void writeRow(size_t step, uint8_t* plane, const Block& rows, size_t lane) const noexcept {
    const ptrdiff_t x = columnOf(step, lane);
    uint8_t* row = plane + lane * stride_;
    if (!isEdge(step)) return storeLanes(row + x, rows.at[lane]);
    uint8_t bytes[kLanes];
    storeLanes(bytes, rows.at[lane]);
    const Inside inside(x, columns_);
    if (inside.size > 0) std::memcpy(row + inside.column, bytes + inside.first, inside.size);
  }

  /// 255 in the lanes that are beside the page.
  [[nodiscard]] Block outside(size_t step) const noexcept {
    Block rows;
    for (size_t lane = 0; lane < kLanes; ++lane) {
      uint8_t bytes[kLanes];
      std::memset(bytes, 0xFF, sizeof bytes);
      const Inside inside(columnOf(step, lane), columns_);
      if (inside.size > 0) std::memset(bytes + inside.first, 0, inside.size);
      rows.at[lane] = loadLanes(bytes);
    }
    return transposed(rows);
  }

  /// Whether the next sixteen steps meet full ink and paper alone, and no error.
  [[nodiscard]] bool isQuiet(const Block& now) const noexcept {
    if (now.paper) return isFull(here_ & next_ & afterNext_);
    Lanes quiet = equal(here_, now.at[0]) & equal(next_, now.at[1]) & equal(afterNext_, now.at[2]);
    for (const Lanes& value : now.at) quiet &= equal(value, Lanes{}) | equal(value, allLanes(255));
    return isFull(quiet);
  }

  template <bool kEdge>
  void run(size_t step, const Block& now, const Block& ahead) noexcept {
    // The last lane hands nothing on to its right.
    Lanes spreads = allLanes(255);
    spreads[kLanes - 1] = 0;
    Block hold;
    if (kEdge) hold = outside(step);
    Block values;
    Block dots;
    for (size_t i = 0; i < kLanes; ++i) {
      const Lanes value = kEdge ? here_ | hold.at[i] : here_;
      const Lanes dot = equal(least(value, threshold_), value);
      values.at[i] = value;
      dots.at[i] = ~dot;
      const Shares shares(~value ^ dot);
      const auto give = [](Lanes to, Lanes share, Lanes darker) noexcept {
        return subtractDownTo0(addUpTo255(to, share & darker), share & ~darker);
      };
      // One lane on is one row down.
      const Lanes below = oneDown(dot);
      const Lanes last = i + 3 < kLanes ? now.at[(i + 3) % kLanes] : ahead.at[(i + 3) % kLanes];
      here_ = give(next_, oneDown(shares.three), below);
      here_ = give(here_, shares.seven & spreads, dot);
      next_ = give(afterNext_, oneDown(shares.five), below);
      afterNext_ = give(last, oneDown(shares.one), below);
    }
    const Block final = transposed(values);
    if (writesInput_) write(step, in_, final, kLanes - 1);
    writeRow(step, in_, final, kLanes - 1);
    write(step, out_, transposed(dots), kLanes - 1);
  }

  uint8_t* in_;
  uint8_t* out_;
  size_t stride_;
  ptrdiff_t rowStep_;  ///< from what a lane reads to what the next one reads
  size_t columns_;
  Lanes threshold_;
  bool writesInput_;
  // What has been received so far for this step and the two after it.
  Lanes here_{};
  Lanes next_{};
  Lanes afterNext_{};
};

/// Whether a whole group is paper, which stays as it is.
bool isPaper(const DiffusionRows& plane, size_t top) noexcept {
  for (size_t lane = 0; lane < kLanes; ++lane) {
    const uint8_t* row = plane.in + (top + lane) * plane.stride;
    if (row[0] != 255 || std::memcmp(row, row + 1, plane.columns - 1) != 0) return false;
  }
  return true;
}

void diffuseGroup(const DiffusionRows& plane, size_t top, uint8_t threshold) noexcept {
  if (!isPaper(plane, top)) return Group(plane, top, threshold).diffuse();
  for (size_t y = top; y < top + kLanes - 1; ++y) {
    if (plane.out != plane.in) std::memset(plane.out + y * plane.stride, 255, plane.columns);
  }
}

}  // namespace

size_t diffuseWave(const DiffusionRows& plane, uint8_t threshold) noexcept {
  size_t top = 0;
  for (; plane.rows - top >= kLanes; top += kLanes - 1) diffuseGroup(plane, top, threshold);
  return top;
}

}  // namespace velka
