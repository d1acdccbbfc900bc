#include "PassColumns.h"

#include <cstring>

namespace velka {

bool PassColumns::allocate(int64_t width) noexcept {
  width_ = width < 0 ? 0 : static_cast<size_t>(width);
  planes_ = zeroedBytes(kColumnBytes * width_);
  columns_ = zeroedBytes(kColumnBytes * (width_ + kShortestRunSpan));
  return planes_ != nullptr && columns_ != nullptr;
}

void PassColumns::clear() noexcept {
  if (!blank_) std::memset(planes_.get(), 0, kColumnBytes * width_);
  blank_ = true;
}

void PassColumns::addRow(const uint8_t* row, int bit) noexcept {
  uint8_t* plane = planes_.get() + static_cast<size_t>(bit / 8) * width_;
  const auto dot = static_cast<uint8_t>(0x80U >> static_cast<unsigned>(bit % 8));
  for (size_t x = 0; x < width_; ++x)
    plane[x] = static_cast<uint8_t>(plane[x] | (row[x] == 0 ? dot : 0));
  blank_ = false;
}

std::span<const uint8_t> PassColumns::pack() noexcept {
  const uint8_t* top = planes_.get();
  const uint8_t* middle = top + width_;
  const uint8_t* bottom = middle + width_;
  for (size_t x = 0; x < width_; ++x) {
    columns_[kColumnBytes * x] = top[x];
    columns_[kColumnBytes * x + 1] = middle[x];
    columns_[kColumnBytes * x + 2] = bottom[x];
  }
  return {columns_.get(), kColumnBytes * (width_ + kShortestRunSpan)};
}

}  // namespace velka
