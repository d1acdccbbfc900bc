// The Orlo model's part in rendering a page.
#pragma once

#include "DeviceRecords.h"
#include "PageLoss.h"

class COrloProcesser;

namespace velka {

/// Sets the processor up for a page of the device record, which must be complete.
void configure(COrloProcesser& processor, const _DEVOBJ& devobj) noexcept;

/// Encodes the output bitmap of the device record with the job's options and writes
/// the commands to standard output. True when there were any; false for a page
/// without ink or pixels and without a complete handle. `loss` is what memory that ran
/// out took from the page. The form feed is the renderer's.
bool sendOrloPage(_DEVOBJ& devobj, PageLoss& loss) noexcept;

}  // namespace velka
