#include "PrintRuns.h"

#include <algorithm>
#include <array>

namespace velka {
namespace {

// A block counts its columns with 16 bits.
constexpr int64_t kMostColumns = 65535;

// The longest run that lets the next one start right behind it on 1/60 inch.
constexpr int64_t longestRun(int64_t step) noexcept {
  return step < kMostColumns ? kMostColumns / step * step : kMostColumns;
}
static_assert(longestRun(1) == 65535 && longestRun(6) == 65532 && longestRun(65536) == 65535);

}  // namespace

bool appendBlock(const CommandSink& sink, uint16_t mode, const PrintRun& run,
                 std::span<const uint8_t> data) noexcept {
  const auto columns = static_cast<uint16_t>(run.right - run.left + 1);
  const std::array<uint8_t, 5> header = {kEsc, '*', static_cast<uint8_t>(mode),
                                         static_cast<uint8_t>(columns),
                                         static_cast<uint8_t>(columns >> 8U)};
  return sink.append(header) && sink.append(data);
}

bool PrintRuns::isBlank(int64_t column) const noexcept {
  const uint8_t* bytes = columns_.data() + static_cast<size_t>(column) * bytesPerColumn_;
  if (bytesPerColumn_ == 3) return (bytes[0] | bytes[1] | bytes[2]) == 0;
  return std::all_of(bytes, bytes + bytesPerColumn_, [](uint8_t byte) { return byte == 0; });
}

int64_t PrintRuns::widened(int64_t left, int64_t right) const noexcept {
  if (right - left >= rules_.shortest) return right;
  const int64_t wide = left + rules_.shortest;
  return rules_.clamp ? std::min(wide, width_ - 1) : wide;
}

std::optional<PrintRun> PrintRuns::next() noexcept {
  while (at_ < width_ && isBlank(at_)) ++at_;
  if (at_ >= width_) return std::nullopt;
  const int64_t left = at_ / rules_.step * rules_.step;
  int64_t right = left;
  int64_t blanks = 0;
  const int64_t end = std::min(width_, left + longestRun(rules_.step));
  for (++at_; at_ < end && blanks <= rules_.mostBlank; ++at_) {
    if (isBlank(at_)) {
      ++blanks;
    } else {
      blanks = 0;
      right = at_;
    }
  }
  return PrintRun{left, widened(left, right)};
}

}  // namespace velka
