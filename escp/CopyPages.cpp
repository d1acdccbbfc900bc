#include "CopyPages.h"

#include <array>
#include <bit>

#include "GrowingBuffer.h"
#include "StandardOutput.h"

namespace velka {

void CopyPages::endAt(unsigned int length) noexcept {
  const auto bytes = std::bit_cast<std::array<uint8_t, sizeof length>>(length);
  (void)appendAt(&ends_, &size_, &size_, bytes);
}

void CopyPages::repeat(std::span<const uint8_t> kept, int times,
                       CancelFlag canceled) const noexcept {
  for (int i = 0; i < times && !isCanceled(canceled); ++i) {
    if (start_) writeToPrinter(*start_);
    if (!writeOnce(kept, canceled)) return;
  }
}

bool CopyPages::writeOnce(std::span<const uint8_t> kept, CancelFlag canceled) const noexcept {
  size_t begin = 0;
  const auto writeTo = [&](size_t end) {
    if (isCanceled(canceled)) return false;
    writeToPrinter(kept.subspan(begin, end - begin));
    begin = end;
    return true;
  };
  for (const unsigned int end : ends())
    if (end <= kept.size() && !writeTo(end)) return false;
  return begin == kept.size() || writeTo(kept.size());
}

}  // namespace velka
