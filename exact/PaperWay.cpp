#include "PaperWay.h"

#include <algorithm>

namespace velka {
namespace {

constexpr int64_t kStepsPerInch = 360;
// Commands of a longer move would overlap.
constexpr int64_t kLongestMove = 32767;

}  // namespace

bool PaperWay::moveTo(int64_t row) noexcept {
  const int64_t wanted = (row + topRow_) * kStepsPerInch / ydpi_;
  while (stand_ != wanted) {
    const int64_t step = std::clamp(wanted - stand_, -kLongestMove, kLongestMove);
    if (!sink_.moveY(static_cast<short>(kStepsPerInch), step)) return false;
    stand_ += step;
  }
  return true;
}

}  // namespace velka
