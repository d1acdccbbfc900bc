// A page of either model with every dot on its place.
#pragma once

#include "DeviceRecords.h"
#include "PageLoss.h"

namespace velka {

/// Encodes the output bitmap of the device record, which must be complete and have its
/// generator, with the job's options, and writes the commands, a form feed at their end,
/// to standard output, copies as the generator makes them. A page without ink feeds its
/// form. False where nothing was sent: resolutions that the head does not take, or memory
/// that ran out, of which `loss` tells.
bool sendExactStandardPage(_DEVOBJ& devobj, PageLoss& loss) noexcept;

/// The same with the Orlo model's head, without the form feed, which is the renderer's.
/// True when there were commands; rows that an ink's dots cannot reach are not printed.
bool sendExactOrloPage(_DEVOBJ& devobj, PageLoss& loss) noexcept;

}  // namespace velka
