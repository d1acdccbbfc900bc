// The three standard descriptors at the start of the process.
#pragma once

namespace velka {

/// Opens /dev/null on each of descriptors 0, 1 and 2 that is closed. Otherwise
/// the next file opened would take its place, and log lines or error texts could
/// end up in the printer's data.
void fillStandardDescriptors() noexcept;

}  // namespace velka
