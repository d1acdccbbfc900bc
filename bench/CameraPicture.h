// A landscape as a camera would have taken it: surfaces with texture down to the pixel,
// the sensor's noise in every channel, highlights beyond its range and shadows below.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace velka::bench {

/// Draws the picture row by row, in any order and always the same.
class CameraPicture {
 public:
  /// Of red, green and blue, 1 the most that the sensor counts.
  using Light = std::array<float, 3>;

  /// @param xdpi,ydpi dots per inch: the scene is the same at every resolution, the noise
  ///   goes with the dots
  CameraPicture(unsigned xdpi, unsigned ydpi);

  /// Fills `row`, three bytes a pixel, with row `y`.
  void draw(unsigned y, std::span<uint8_t> row);

 private:
  /// Smooth noise of a row, 0 to 1: patches of `inches`, the same for the same `seed`.
  void patches(double inches, unsigned seed, unsigned y, std::vector<float>& values) const;

  /// What column `x` of the row at hand sends to the camera.
  [[nodiscard]] Light lightAt(size_t x) const;

  unsigned xdpi_;
  unsigned ydpi_;
  std::array<uint8_t, 4096> gamma_;  ///< of light, 0 to 1 in 4096 parts
  std::array<std::vector<float>, 4> texture_;
  std::array<std::vector<float>, 3> scene_;
};

}  // namespace velka::bench
