// Brightness and contrast as one table of 256 entries.
#pragma once

#include <cstdint>

namespace velka {

/// Fills `table` with i x (100 + contrast)% + brightness around mid-grey 128,
/// truncated toward zero and limited to 0..255. Every step is done in single
/// precision, because the table's entries depend on it. Any arguments will do.
///
/// Limiting before or after the truncation, and at "below 0" or "below 1", gives
/// the same entries, so both printer models share this table.
void fillLightTable(int brightness, int contrast, uint16_t (&table)[256]);

/// Fills `table` with its own indices.
void fillIdentity(uint16_t (&table)[256]);

/// Maps a pixel through `table`. Pure black and pure white stay as they are:
/// paper must stay unprinted and solid ink solid at any brightness.
void applyLight(const uint16_t (&table)[256], unsigned char& r, unsigned char& g, unsigned char& b);

}  // namespace velka
