// Headers and lines of the raster stream.
//
// libcups says no more than that there is none; errno tells an input that ended from one
// that failed. Behind a read that failed nothing is where it should be.
#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <span>

namespace velka {

/// A raster stream, which stays its opener's, and what became of it.
class RasterInput {
 public:
  /// Null is a stream without a page.
  explicit RasterInput(cups_raster_t* raster) noexcept : raster_(raster) {}

  /// Reads the next page's header; false where there is none, and from the first read that
  /// failed on.
  [[nodiscard]] bool nextHeader(cups_page_header2_t& header) noexcept;

  /// Reads the next line, as long as its page's header says; false as above.
  [[nodiscard]] bool nextLine(std::span<uint8_t> line) noexcept;

  /// Says that what follows is not read, for want of memory: nobody would know where it is.
  void leave() noexcept;

  /// The errno of the read that failed; 0 where none did, however early the input ended.
  [[nodiscard]] int error() const noexcept { return error_; }

 private:
  template <typename Read>
  bool attempt(Read read) noexcept;

  cups_raster_t* raster_;
  int error_ = 0;
};

}  // namespace velka
