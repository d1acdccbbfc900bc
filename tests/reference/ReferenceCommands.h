// Every byte sequence of the standard model's command set, made from its field
// values. Each function returns the whole sequence.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "DeviceRecords.h"

namespace velka::reference {

using Bytes = std::vector<uint8_t>;

/// Adds `tail` at the end of `bytes`.
void append(Bytes& bytes, const Bytes& tail);

/// ESC @, ESC 2, ESC C n; sizes in pixels, resolutions in dots per inch.
Bytes startDocument(int orientation, int pageWidth, int pageHeight, int printQuality,
                    int yResolution);

/// ESC @.
Bytes endDocument();

/// FF.
Bytes endPage();

/// ESC ( U: the unit becomes `unit` / 3600 inch.
Bytes setUnit(int unit);

/// ESC $ (kind 1, absolute) or ESC \ (kind 2, relative); nothing for any other
/// kind. `x` in pixels.
std::optional<Bytes> xMove(int kind, float divisor, int x);

/// CR and ESC ( v in 1/360 inch; `dy` in pixels at `yResolution`. Empty for less
/// than one unit. Nothing when the resolution is 0.
std::optional<Bytes> relativeYMove(int yResolution, int dy);

/// CR and ESC J in 1/180 inch. Nothing when the resolution is 0.
std::optional<Bytes> advanceYMove(int yResolution, int dy);

/// GS 04 T p by the options' eject rule; may be empty. `page` counts from 1.
Bytes ejectMode(const tagOEMCFG& options, uint32_t page);

/// Bytes per column and the bit-image mode of ESC *.
struct BitImageMode {
  int bytesPerColumn;
  int mode;
};

/// Nothing for a combination that cannot be printed.
std::optional<BitImageMode> bitImageMode(int headPins, int yResolution, int printQuality);

/// ESC r, ESC * and the column count; colour 0 black, 1 red. The count goes out
/// in 16 bits.
Bytes blockHeader(int colour, int mode, uint32_t columns);

}  // namespace velka::reference
