// Pages to measure with: drawn from fixed seeds, so that every machine and every
// version prints the same.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "CameraPicture.h"

namespace velka::bench {

enum class Kind : uint8_t { Text, Receipt, Photo, Camera, White };

inline constexpr Kind kKinds[] = {Kind::Text, Kind::Receipt, Kind::Photo, Kind::Camera,
                                  Kind::White};

[[nodiscard]] std::string_view nameOf(Kind kind) noexcept;
[[nodiscard]] std::optional<Kind> kindOf(std::string_view name) noexcept;

/// A page's size in dots and its dots per inch.
struct Format {
  unsigned width;
  unsigned height;
  unsigned xdpi;
  unsigned ydpi;
};

/// A4 at a resolution.
[[nodiscard]] Format a4(unsigned xdpi, unsigned ydpi) noexcept;
/// 80 mm of paper, `millimetres` long, at 360 x 360 dpi.
[[nodiscard]] Format roll(unsigned millimetres) noexcept;

/// Draws pages row by row.
class TestPage {
 public:
  TestPage(Kind kind, const Format& format);

  /// Three bytes a pixel: red, green, blue. Valid until the next call. Text: 60
  /// lines of glyphs with soft edges on an A4 page; receipt: the same with every
  /// fifth line and a bar red; photo: gradients with grain; camera: a CameraPicture;
  /// white: nothing.
  [[nodiscard]] std::span<const uint8_t> row(unsigned y);

 private:
  void drawText(unsigned y);
  void drawPhoto(unsigned y);
  void fill(unsigned from, unsigned to, const uint8_t (&colour)[3]);

  Kind kind_;
  Format format_;
  std::vector<uint8_t> row_;
  CameraPicture camera_;
};

}  // namespace velka::bench
