// What the Orlo model's head needs to know of a page's resolutions.
#pragma once

#include <cstdint>
#include <optional>

namespace velka {

/// Resolutions, and what the printer needs to know of them.
struct HeadResolution {
  int horizontalDpi;
  int verticalDpi;
  uint16_t mode;  ///< of ESC *
  int passes;     ///< a band

  /// Columns in 1/60 inch.
  [[nodiscard]] int64_t step() const noexcept {
    return horizontalDpi < 60 ? 1 : horizontalDpi / 60;
  }
  [[nodiscard]] float xDivisor() const noexcept {
    return static_cast<float>(horizontalDpi) / 60.0F;
  }
};
/// Nothing for a pair of resolutions that the model does not print.
[[nodiscard]] std::optional<HeadResolution> headResolution(int horizontalDpi,
                                                           int verticalDpi) noexcept;

}  // namespace velka
