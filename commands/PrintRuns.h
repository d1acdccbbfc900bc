// Which columns of a pass are sent: stretches of ink, cut where the paper stays
// white for long and where a block is as long as it can count.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "CommandBuilders.h"

namespace velka {

/// Columns of a block, both inclusive.
struct PrintRun {
  int64_t left;
  int64_t right;
};

/// Appends a raster block; `run` is what its column count is taken from.
[[nodiscard]] bool appendBlock(const CommandSink& sink, uint16_t mode, const PrintRun& run,
                               std::span<const uint8_t> data) noexcept;

/// Yields a pass's runs from left to right.
class PrintRuns {
 public:
  /// @param columns three bytes a column, of which the first `width` are the page's
  /// @param step columns in 1/60 inch, where blocks start; at least 1
  /// @param clamp whether a widened run ends at the page's last column
  PrintRuns(std::span<const uint8_t> columns, int64_t width, int64_t step, bool clamp) noexcept
      : columns_(columns), width_(width), step_(step), clamp_(clamp) {}

  [[nodiscard]] std::optional<PrintRun> next() noexcept;

 private:
  [[nodiscard]] bool isBlank(int64_t column) const noexcept;
  [[nodiscard]] int64_t widened(int64_t left, int64_t right) const noexcept;

  std::span<const uint8_t> columns_;
  int64_t width_;
  int64_t step_;
  bool clamp_;
  int64_t at_ = 0;
};

}  // namespace velka
