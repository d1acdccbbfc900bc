// Rows at a bitmap's end that nothing was written to.
//
// A page is as high as its header says, but only the lines that came cost memory: the
// rows behind them hold anything and count as white. The device record keeps their
// number for the page bitmap and for the output bitmap.
#pragma once

#include <cstdint>
#include <span>

#include "DeviceRecords.h"

namespace velka {

/// The page bitmap up to its last row that was written to.
[[nodiscard]] std::span<uint8_t> storedPage(const _OEMPDEV& pdev) noexcept;
/// The same of the output bitmap.
[[nodiscard]] std::span<uint8_t> storedOutput(const _OEMPDEV& pdev) noexcept;

/// Writes white to the rows that hold nothing, for those who read all of the bitmap.
void whitenPage(_OEMPDEV& pdev) noexcept;
void whitenOutput(_OEMPDEV& pdev) noexcept;

}  // namespace velka
