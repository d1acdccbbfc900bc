#include "ErrorDiffusion.h"

#include <algorithm>
#include <cstring>

#include "ByteMath.h"
#include "ByteRuns.h"
#include "CheckedMath.h"

namespace velka {
namespace {

int16_t share(int error, int weight) {
  return static_cast<int16_t>(std::clamp(error * weight / 16, -255, 255));
}

uint8_t add(uint8_t value, int16_t part) {
  return static_cast<uint8_t>(clampToByte(value + part));
}

void diffuseLastRow(const DiffusionTable& table, uint8_t* row, uint8_t* out, size_t columns) {
  for (size_t x = 0; x < columns; ++x) {
    const uint8_t value = row[x];  // `out` may be `row`
    out[x] = table.output[value];
    if (x + 1 < columns) {
      row[x + 1] = add(row[x + 1], table.shares[value].right);
    }
  }
}

/// A row and the one below it. The row below is written one column late, when it
/// has its third share, so three of its pixels are on the way at a time.
class RowPair {
 public:
  RowPair(const DiffusionTable& table, uint8_t* row, uint8_t* below, uint8_t* out, size_t columns)
      : table_(table), row_(row), below_(below), out_(out), columns_(columns) {}

  void diffuse() {
    size_t x = 0;
    while (x < columns_) {
      x = table_.clean[row_[x]] ? passRun(x) : spread(x);
    }
  }

 private:
  size_t passRun(size_t x) {
    const size_t length = runLength(row_ + x, columns_ - x);
    std::memset(out_ + x, table_.output[row_[x]], length);
    return x + length;
  }

  /// Goes on from `x` until a value leaves no error or the row ends.
  size_t spread(size_t x) {
    // Copies, since a byte that is stored might be part of any member.
    const DiffusionTable& table = table_;
    uint8_t* const row = row_;
    uint8_t* const below = below_;
    uint8_t* const out = out_;
    const size_t begin = x;
    const size_t last = columns_ - 1;
    uint8_t value = row[x];
    uint8_t left = x > 0 ? below[x - 1] : uint8_t{0};
    uint8_t here = below[x];
    for (; x < last && !table.clean[value]; ++x) {
      const DiffusionTable::Shares shares = table.shares[value];
      row[x] = value;
      out[x] = table.output[value];
      if (x > 0) {
        below[x - 1] = add(left, shares.leftDown);
      }
      left = add(here, shares.down);
      here = add(below[x + 1], shares.rightDown);
      value = add(row[x + 1], shares.right);
    }
    row[x] = value;
    below[x] = here;
    if (x > begin) {
      below[x - 1] = left;
    }
    return x == last ? finish(x) : x;
  }

  size_t finish(size_t x) {
    const DiffusionTable::Shares shares = table_.shares[row_[x]];
    out_[x] = table_.output[row_[x]];
    if (x > 0) {
      below_[x - 1] = add(below_[x - 1], shares.leftDown);
    }
    below_[x] = add(below_[x], shares.down);
    return x + 1;
  }

  const DiffusionTable& table_;
  uint8_t* row_;
  uint8_t* below_;
  uint8_t* out_;
  size_t columns_;
};

}  // namespace

DiffusionTable::DiffusionTable(short dotFactor, short threshold) {
  for (int value = 0; value < 256; ++value) {
    const bool dot = value <= threshold;
    const double printed = dot ? dotFactor / 10.0 * value : 255.0;
    const int error = truncateToInt32(value - printed);
    const auto i = static_cast<size_t>(value);
    shares[i] = {share(error, 7), share(error, 3), share(error, 5), share(error, 1)};
    output[i] = dot ? 0 : 255;
    // The right share is the largest: without it there is none.
    clean[i] = shares[i].right == 0;
  }
}

void diffuseRow(const DiffusionTable& table, uint8_t* row, uint8_t* below, uint8_t* out,
                size_t columns) {
  if (below == nullptr) {
    diffuseLastRow(table, row, out, columns);
  } else {
    RowPair(table, row, below, out, columns).diffuse();
  }
}

}  // namespace velka
