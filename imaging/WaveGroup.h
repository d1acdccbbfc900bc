// One group of a diffusion wave: sixteen rows of a plane, and how far they have come.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "ByteLanes.h"
#include "DiffusionWave.h"
#include "WavePair.h"
#include "WaveSteps.h"

namespace velka {

inline constexpr size_t kSkew = 2;  // columns from a row to the one above
inline constexpr size_t kLag = kSkew * (kLanes - 1);
inline constexpr size_t kGroupRows = kLanes - 1;  // the last row of a group is the next one's first
// Columns ahead that are asked for: more rows are under way than the processor foresees.
inline constexpr size_t kFetched = 128;

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

/// One group of sixteen rows, which advances sixteen steps at a time.
class WaveGroup {
 public:
  WaveGroup(const DiffusionRows& plane, size_t top, uint8_t threshold) noexcept
      : in_(plane.in + top * plane.stride),
        out_(plane.out + top * plane.stride),
        stride_(plane.stride),
        rowStep_(static_cast<ptrdiff_t>(plane.stride) - static_cast<ptrdiff_t>(kSkew)),
        columns_(plane.columns),
        threshold_(allLanes(threshold)),
        writesInput_(plane.in != plane.out),
        now_(read(0)),
        received_{now_.at[0], now_.at[1], now_.at[2]} {
    look();
  }

  [[nodiscard]] bool isDone() const noexcept { return step_ >= columns_ + kLag; }

  /// Whether the next steps are ordinary ones, which two groups can make at a time.
  [[nodiscard]] bool isBusy() const noexcept { return !isDone() && !quiet_ && !isEdge(step_); }

  /// Makes the next sixteen steps, if there are any left.
  void advance() noexcept {
    if (isDone()) return;
    if (quiet_) {
      if (writesInput_) write(out_, now_.paper ? now_ : transposed(now_));
      received_ = {ahead_.at[0], ahead_.at[1], ahead_.at[2]};
      return next();
    }
    const WaveBlock hold = isEdge(step_) ? outside(step_) : WaveBlock{};
    WaveSteps steps = beginSteps();
    for (size_t i = 0; i < kLanes; ++i) steps.make(i, hold.at[i]);
    finish(steps);
  }

  /// Advances two busy groups. The processor makes the steps of one while it waits for
  /// those of the other.
  static void advanceBoth(WaveGroup& upper, WaveGroup& lower) noexcept {
    WaveSteps first = upper.beginSteps();
    WaveSteps second = lower.beginSteps();
    for (size_t i = 0; i < kLanes; ++i) {
      first.make(i, Lanes{});
      second.make(i, Lanes{});
    }
    upper.finish(first);
    lower.finish(second);
  }

  /// How many times sixteen steps a kernel for pairs can make of two groups now.
  static size_t pairBlocks(const WaveGroup& upper, const WaveGroup& lower) noexcept {
    // It reads two blocks ahead and writes dots alone.
    const bool inside = lower.step_ >= kLag && upper.step_ + 2 * kLanes < upper.columns_;
    return inside && !upper.writesInput_ ? (upper.columns_ - upper.step_) / kLanes - 2 : 0;
  }

  /// Lets `both` make `blocks` times sixteen steps, at most as many.
  static void advancePair(AdvancePair& both, WaveGroup& upper, WaveGroup& lower,
                          size_t blocks) noexcept {
    WavePair pair = {{upper.rows(), lower.rows()}, upper.rowStep_, upper.threshold_[0]};
    both(pair, blocks);
    upper.moveOn(blocks, pair.groups[0]);
    lower.moveOn(blocks, pair.groups[1]);
  }

 private:
  [[nodiscard]] WaveRows rows() const noexcept {
    WaveRows rows = {in_ + step_, {}};
    storeLanes(rows.received[0], received_.here);
    storeLanes(rows.received[1], received_.next);
    storeLanes(rows.received[2], received_.afterNext);
    return rows;
  }

  void moveOn(size_t blocks, const WaveRows& rows) noexcept {
    step_ += blocks * kLanes;
    received_ = {loadLanes(rows.received[0]), loadLanes(rows.received[1]),
                 loadLanes(rows.received[2])};
    now_ = read(step_);
    look();
  }

  [[nodiscard]] WaveSteps beginSteps() const noexcept {
    return {now_, ahead_, threshold_, received_};
  }

  void finish(const WaveSteps& steps) noexcept {
    if (writesInput_) write(in_, transposed(steps.values));
    writeLastRow(lastRow(steps.values));
    write(out_, transposed(steps.dots));
    received_ = steps.received;
    next();
  }

  void next() noexcept {
    now_ = ahead_;
    step_ += kLanes;
    look();
  }

  void look() noexcept {
    ahead_ = read(step_ + kLanes);
    quiet_ = isQuiet();
  }

  [[nodiscard]] ptrdiff_t columnOf(size_t step, size_t lane) const noexcept {
    return static_cast<ptrdiff_t>(step) - static_cast<ptrdiff_t>(kSkew * lane);
  }

  [[nodiscard]] bool isEdge(size_t step) const noexcept {
    return step < kLag || step + kLanes > columns_;
  }

  /// What the lanes read from `step` on; paper beside the page.
  [[nodiscard]] WaveBlock read(size_t step) const noexcept {
    WaveBlock rows = isEdge(step) ? readEdge(step) : readInside(step);
    rows.paper = isPaper(rows);
    return rows.paper ? rows : transposed(rows);
  }

  [[nodiscard]] WaveBlock readInside(size_t step) const noexcept {
    WaveBlock rows;
    const uint8_t* from = in_ + step;
    const size_t ahead = step + kFetched + kLanes <= columns_ ? kFetched : 0;
    for (Lanes& row : rows.at) {
      row = loadLanes(from);
      __builtin_prefetch(from + ahead, 1);
      from += rowStep_;
    }
    return rows;
  }

  [[nodiscard]] WaveBlock readEdge(size_t step) const noexcept {
    WaveBlock rows;
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

  /// All rows of a block but the last, as far as they lie on the page.
  void write(uint8_t* plane, const WaveBlock& rows) const noexcept {
    if (isEdge(step_)) {
      for (size_t lane = 0; lane < kGroupRows; ++lane) writeRow(plane, rows.at[lane], lane);
      return;
    }
    uint8_t* to = plane + step_;
    for (size_t lane = 0; lane < kGroupRows; ++lane) {
      storeLanes(to, rows.at[lane]);
      to += rowStep_;
    }
  }

  /// The row that the next group starts with.
  void writeLastRow(Lanes values) const noexcept {
    if (isEdge(step_)) return writeRow(in_, values, kGroupRows);
    storeLanes(in_ + step_ + static_cast<ptrdiff_t>(kGroupRows) * rowStep_, values);
  }

  void writeRow(uint8_t* plane, Lanes values, size_t lane) const noexcept {
    const Inside inside(columnOf(step_, lane), columns_);
    if (inside.size == 0) return;
    uint8_t bytes[kLanes];
    storeLanes(bytes, values);
    std::memcpy(plane + lane * stride_ + inside.column, bytes + inside.first, inside.size);
  }

  /// 255 in the lanes that are beside the page.
  [[nodiscard]] WaveBlock outside(size_t step) const noexcept {
    WaveBlock rows;
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
  [[nodiscard]] bool isQuiet() const noexcept {
    if (now_.paper) return isFull(received_.here & received_.next & received_.afterNext);
    Lanes quiet = equal(received_.here, now_.at[0]) & equal(received_.next, now_.at[1]) &
                  equal(received_.afterNext, now_.at[2]);
    if (!isFull(quiet)) return false;
    for (const Lanes& value : now_.at) quiet &= equal(value, Lanes{}) | equal(value, allLanes(255));
    return isFull(quiet);
  }

  uint8_t* in_;
  uint8_t* out_;
  size_t stride_;
  ptrdiff_t rowStep_;  ///< from what a lane reads to what the next one reads
  size_t columns_;
  Lanes threshold_;
  bool writesInput_;
  size_t step_ = 0;
  WaveBlock now_;    ///< what is read at the next sixteen steps
  WaveBlock ahead_;  ///< and at the sixteen after them
  WaveReceived received_;
  bool quiet_ = false;
};

}  // namespace velka
