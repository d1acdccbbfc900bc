// The device records' life: filled from the first page header, drained after
// every page, closed at the end of the document; and the buffers they hold.
//
// Functions that report success return 1, else 0. An absent record, handle or
// header makes any of them do nothing.
#pragma once

#include <cups/raster.h>

#include <cstdint>

#include "DeviceRecords.h"

namespace velka {

/// Pages of that many dots per inch across, and of more, are sent as ones of 360 both ways.
inline constexpr uint32_t kFirstScaledDpi = 361;

}  // namespace velka

/// Fills the device mode: resolutions, collation and copies from the header,
/// orientation always portrait.
void InitDevmode(_DEVMODE* devmode, const cups_page_header2_t* header) noexcept;

/// Fills the device record: page geometry from the header, everything else that
/// a job starts with. Buffers are forgotten, not released: the record is fresh.
void InitOemPDEV(_OEMPDEV* pdev, const cups_page_header2_t* header) noexcept;

/// Creates the standard model's command generator where the record holds none.
void StartDocOemPDEV(_OEMPDEV* pdev) noexcept;

/// Renders the pending page, if there is one, and releases the page's buffers,
/// sections and rectangles. Returns 1 when the page's commands were produced.
int StartPageOemPDEV(_DEVOBJ* devobj) noexcept;

/// Renders a page still pending, sends the collated copies and the
/// end-of-document commands, destroys the generator and releases everything.
/// Does nothing for a handle that no page has filled.
void EndDocOemPDEV(_DEVOBJ* devobj) noexcept;

/// Grow the page / output buffer by exactly `bytes` zeroed bytes (it is allocated
/// where there is none). On failure, 32 bits passed included, the buffer is
/// released and the result is 0.
int bGrowBuffer(_OEMPDEV* pdev, uint32_t bytes) noexcept;
int bGrowOutputBuffer(_OEMPDEV* pdev, uint32_t bytes) noexcept;

/// Release the page / output buffer where there is one.
void vFreeBuffer(_OEMPDEV* pdev) noexcept;
void vFreeOutputBuffer(_OEMPDEV* pdev) noexcept;

/// The page buffer becomes the output buffer, and the record holds no page buffer
/// any more. Does nothing where there is no page buffer.
void vMoveBufferToOutput(_OEMPDEV* pdev) noexcept;

/// Appends a rectangle to the section list. Returns 1, 0 when memory runs out.
int bGrowSectionRect(_OEMPDEV* pdev, _RECTL rect) noexcept;

/// Releases the section list.
void vFreeSectionRect(_OEMPDEV* pdev) noexcept;
