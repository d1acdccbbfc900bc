#include "StreamStat.h"

#include <array>
#include <bit>
#include <cstdlib>

namespace velka {
namespace {

constexpr std::uint8_t kCarriageReturn = 0x0D;
constexpr std::uint8_t kFormFeed = 0x0C;
constexpr std::uint8_t kEscape = 0x1B;
constexpr std::uint8_t kGroup = 0x1D;

// In 1/360 inch. The moves inside a band (odd rows, red over black) are one dot
// of at most 1/60 inch; the head's 24 pins are at least 48 units high.
constexpr std::int64_t kBandStep = 24;

struct Mode {
  std::uint8_t code;
  std::size_t bytesPerColumn;
};

constexpr std::array<Mode, 10> kModes{{
    {0, 1},
    {1, 1},
    {4, 1},
    {6, 1},
    {32, 3},
    {33, 3},
    {38, 3},
    {39, 3},
    {40, 3},
    {41, 9},
}};

std::size_t bytesPerColumn(std::uint8_t mode) {
  for (const Mode& known : kModes) {
    if (known.code == mode) return known.bytesPerColumn;
  }
  return 0;
}

class Reader {
 public:
  Reader(std::span<const std::uint8_t> stream, StreamStat& stat) : stream_(stream), stat_(stat) {}

  // What is wrong with the stream, or null; offset() then tells where.
  const char* read() {
    while (at_ < stream_.size()) {
      start_ = at_;
      if (const char* fault = command()) return fault;
    }
    start_ = at_;
    return pageHasBlocks_ ? "the stream ends inside a page" : nullptr;
  }

  [[nodiscard]] std::size_t offset() const { return start_; }

 private:
  [[nodiscard]] bool has(std::size_t count) const { return stream_.size() - at_ >= count; }

  // True, and steps over them, when these bytes are next.
  template <typename... Bytes>
  bool accept(Bytes... bytes) {
    const std::array<std::uint8_t, sizeof...(bytes)> expected{static_cast<std::uint8_t>(bytes)...};
    if (!has(expected.size())) return false;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      if (stream_[at_ + i] != expected[i]) return false;
    }
    at_ += expected.size();
    return true;
  }

  const char* skip(std::size_t count) {
    if (!has(count)) return "the stream ends inside a command";
    at_ += count;
    return nullptr;
  }

  [[nodiscard]] std::uint16_t wordBefore() const {
    return static_cast<std::uint16_t>(stream_[at_ - 2] | (stream_[at_ - 1] << 8));
  }

  const char* command() {
    if (accept(kCarriageReturn)) return nullptr;
    if (accept(kFormFeed)) return endPage();
    if (accept(kGroup, 0x04, 'T')) return skip(1);
    if (accept(kEscape, '@') || accept(kEscape, '2')) return nullptr;
    if (accept(kEscape, 'C')) return skip(1);
    if (accept(kEscape, '(', 'U', 0x01, 0x00)) return skip(1);
    if (accept(kEscape, '$') || accept(kEscape, '\\')) return skip(2);
    if (accept(kEscape, '(', 'v')) return move();
    if (accept(kEscape, 'r')) return block();
    return "unknown command";
  }

  const char* endPage() {
    ++stat_.pages;
    pageHasBlocks_ = false;
    return nullptr;
  }

  // A move too long for one command has all but the last cut to their first
  // three bytes; the room of the cut bytes follows as zeros.
  const char* move() {
    std::size_t cut = 0;
    while (accept(kEscape, '(', 'v')) ++cut;
    if (!accept(0x02, 0x00)) return "vertical move of unknown length";
    if (const char* fault = skip(2)) return fault;
    moved_ += static_cast<std::int16_t>(wordBefore());
    if (cut > 0) moved_ += kBandStep;  // what was cut off is longer than any band
    for (; cut > 0; --cut) {
      if (!accept(0, 0, 0, 0)) return "long vertical move without its padding";
    }
    return nullptr;
  }

  const char* block() {
    constexpr std::size_t kHeaderRest = 6;  // colour, ESC * mode, two count bytes
    if (!has(kHeaderRest)) return "the stream ends inside a block header";
    const std::uint8_t colour = stream_[at_];
    if (colour > 1) return "block of unknown colour";
    ++at_;
    if (!accept(kEscape, '*')) return "colour without a block";
    const std::size_t width = bytesPerColumn(stream_[at_]);
    if (width == 0) return "block of unknown mode";
    at_ += 3;
    const std::size_t size = wordBefore() * width;
    if (!has(size)) return "the stream ends inside a block";
    countDots(stream_.subspan(at_, size), colour == 0 ? stat_.blackDots : stat_.redDots);
    at_ += size;
    ++stat_.blocks;
    countBand();
    return nullptr;
  }

  static void countDots(std::span<const std::uint8_t> data, std::uint64_t& dots) {
    for (const std::uint8_t byte : data) dots += static_cast<std::uint64_t>(std::popcount(byte));
  }

  void countBand() {
    if (!pageHasBlocks_ || std::abs(moved_) >= kBandStep) ++stat_.bands;
    pageHasBlocks_ = true;
    moved_ = 0;
  }

  std::span<const std::uint8_t> stream_;
  StreamStat& stat_;
  std::size_t at_ = 0;
  std::size_t start_ = 0;
  std::int64_t moved_ = 0;  // since the last block
  bool pageHasBlocks_ = false;
};

}  // namespace

std::optional<StreamFault> readStream(std::span<const std::uint8_t> stream, StreamStat& stat) {
  Reader reader(stream, stat);
  const char* fault = reader.read();
  if (fault == nullptr) return std::nullopt;
  return StreamFault{reader.offset(), fault};
}

}  // namespace velka
