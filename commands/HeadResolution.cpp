#include "HeadResolution.h"

#include "BitImageMode.h"

namespace velka {

std::optional<HeadResolution> headResolution(int horizontalDpi, int verticalDpi) noexcept {
  // A column of this head has three bytes in every mode.
  const auto mode = columnBitImageMode(verticalDpi, horizontalDpi);
  if (!mode) return std::nullopt;
  return HeadResolution{horizontalDpi, verticalDpi, mode->mode, verticalDpi == 360 ? 2 : 1};
}

}  // namespace velka
