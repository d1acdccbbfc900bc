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

/// What makes a run of a pass's ink.
struct RunRules {
  int64_t step;       ///< columns between the places where blocks may start; at least 1
  int64_t shortest;   ///< a run ends at least as many columns behind its first; below step - 1
                      ///< the column that opens a run could lie behind its end
  int64_t mostBlank;  ///< a run ends where more columns than this are blank
  bool clamp;         ///< whether a run that is widened for that ends at the page's last column
};

/// Yields a pass's runs from left to right.
class PrintRuns {
 public:
  /// @param columns `bytesPerColumn` bytes a column, of which the first `width` are the page's
  PrintRuns(std::span<const uint8_t> columns, size_t bytesPerColumn, int64_t width,
            const RunRules& rules) noexcept
      : columns_(columns), bytesPerColumn_(bytesPerColumn), width_(width), rules_(rules) {}

  [[nodiscard]] std::optional<PrintRun> next() noexcept;

 private:
  [[nodiscard]] bool isBlank(int64_t column) const noexcept;
  [[nodiscard]] int64_t widened(int64_t left, int64_t right) const noexcept;

  std::span<const uint8_t> columns_;
  size_t bytesPerColumn_;
  int64_t width_;
  RunRules rules_;
  int64_t at_ = 0;
};

}  // namespace velka
