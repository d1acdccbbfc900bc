#include "PassColumns.h"

#include "BlockPacking.h"

namespace velka {

bool PassColumns::allocate(int64_t width, size_t bytesPerColumn) noexcept {
  width_ = width < 0 ? 0 : static_cast<size_t>(width);
  bytesPerColumn_ = bytesPerColumn;
  columns_ = zeroedBytes(bytesPerColumn_ * (width_ + kShortestRunSpan));
  return columns_ != nullptr;
}

void PassColumns::clear() noexcept {
  rows_.fill(nullptr);
  blank_ = true;
}

void PassColumns::addRow(const uint8_t* row, int bit) noexcept {
  rows_[static_cast<size_t>(bit)] = row;
  blank_ = false;
}

std::span<const uint8_t> PassColumns::pack() noexcept {
  const std::span<uint8_t> columns(columns_.get(), bytesPerColumn_ * (width_ + kShortestRunSpan));
  packRows(std::span(rows_).first(8 * bytesPerColumn_), width_, columns);
  return columns;
}

}  // namespace velka
