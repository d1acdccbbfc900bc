// Where things are in a raster stream: pure, bytes in, places out.
//
// The printing filter reads the stream through libcups, and what passes here must be told as
// that will take it. A header is therefore decoded by libcups itself; only the way from one
// header to the next is gone here, as a copy of the lines is nobody's need.
#pragma once

#include <cups/raster.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace velka {

/// The bytes that a stream begins with.
using RasterSync = std::array<uint8_t, 4>;

/// What they say of all that follows. The other byte order needs no word here: libcups knows
/// it by the same bytes, and lines are not looked into.
struct RasterFormat {
  RasterSync sync = {};
  size_t headerBytes = 0;
  bool compressed = false;
};

/// The largest header.
inline constexpr size_t kMostHeaderBytes = sizeof(cups_page_header2_t);

/// The format of a stream of version 1, 2 (compressed, PWG raster too) or 3, in either byte
/// order; none for anything else.
[[nodiscard]] std::optional<RasterFormat> rasterFormat(const RasterSync& sync) noexcept;

/// The page header in as many bytes as the format says, in this machine's byte order; none
/// where libcups refuses it, so that the printing filter reads no further.
[[nodiscard]] std::optional<cups_page_header2_t> pageHeader(
    const RasterFormat& format, std::span<const uint8_t> bytes) noexcept;

/// The lines of one page, as they go by.
class PageLines {
 public:
  PageLines(const RasterFormat& format, const cups_page_header2_t& header) noexcept;

  [[nodiscard]] bool areComplete() const noexcept { return lines_ == 0; }

  /// Of lines that are not compressed the bytes still to come, which nobody has to look at; 0
  /// of others.
  [[nodiscard]] uint64_t plainBytes() const noexcept;

  /// How many there were at first.
  [[nodiscard]] uint64_t allPlainBytes() const noexcept { return allLines_ * lineBytes_; }

  /// So many of them went by unseen.
  void skip(uint64_t bytes) noexcept;

  /// Takes what belongs to this page from the start of what comes next, and returns how many
  /// bytes that is; fewer than there are only where the page ends.
  [[nodiscard]] size_t take(std::span<const uint8_t> bytes) noexcept;

  /// How much of the page went by: 0 to 100, the last only where it is complete.
  [[nodiscard]] int percent() const noexcept;

 private:
  [[nodiscard]] size_t takeCompressed(std::span<const uint8_t> bytes) noexcept;
  [[nodiscard]] size_t takeWholeRuns(std::span<const uint8_t> bytes) noexcept;
  void beginLine(uint8_t repeats) noexcept;
  void beginRun(uint8_t code) noexcept;
  void endLine() noexcept;

  bool compressed_;
  uint32_t lineBytes_;
  uint32_t pixelBytes_;
  uint64_t allLines_;
  uint64_t lines_;          // still to come; the one that has begun is among them
  uint64_t passed_ = 0;     // plain: bytes of them that went by
  uint32_t left_ = 0;       // compressed: bytes that runs have yet to give the line
  uint32_t data_ = 0;       // bytes to come that a run's code has announced
  uint32_t sameLines_ = 0;  // lines that the one in work stands for
};

}  // namespace velka
