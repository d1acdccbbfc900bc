// Whether a job's dots go where its pages have them, or where the original stream puts
// them. The choice travels beside the device records, whose layouts are fixed.
#pragma once

#include <cups/ppd.h>

#include "ESCPSML.h"

namespace velka {

enum class DotPlacement : uint8_t { Original, Exact };

/// The marked choice of "DotPlacement"; the original without a PPD or the option.
[[nodiscard]] DotPlacement chosenPlacement(ppd_file_t* ppd) noexcept;

/// What the job's pages are rendered with, from the first to the last; the original until
/// it is set. One thread runs a job, so that it needs no lock.
void setPlacement(DotPlacement placement) noexcept;
[[nodiscard]] DotPlacement placement() noexcept;

/// The way of a page onto paper.
[[nodiscard]] const PageServices& servicesOf(DotPlacement placement) noexcept;

}  // namespace velka
