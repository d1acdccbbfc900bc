#include "InkRows.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace velka {
namespace {

bool isBlank(const uint8_t* row, int64_t width) noexcept {
  return row[0] == 255 && std::memcmp(row, row + 1, static_cast<size_t>(width - 1)) == 0;
}

}  // namespace

bool InkRows::scan(const DotPlane& plane) noexcept {
  rows_ = 0;
  if (plane.data == nullptr || plane.width <= 0 || plane.filledRows <= 0) return true;
  const int64_t rows = std::min<int64_t>(plane.filledRows, std::numeric_limits<int32_t>::max());
  next_.reset(new (std::nothrow) int32_t[static_cast<size_t>(rows)]);
  if (next_ == nullptr) return false;
  rows_ = rows;
  auto next = static_cast<int32_t>(rows);
  for (int64_t y = rows - 1; y >= 0; --y) {
    if (!isBlank(plane.row(y), plane.width)) next = static_cast<int32_t>(y);
    next_[static_cast<size_t>(y)] = next;
  }
  return true;
}

std::optional<int64_t> InkRows::firstFrom(int64_t row) const noexcept {
  row = std::max<int64_t>(row, 0);
  if (row >= rows_) return std::nullopt;
  const int64_t found = next_[static_cast<size_t>(row)];
  if (found >= rows_) return std::nullopt;
  return found;
}

}  // namespace velka
