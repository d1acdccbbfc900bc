// Writing to the printer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace velka {

/// Writes all bytes to a descriptor, going on after interruptions and after
/// writes that took fewer, and waiting where it would block. Returns the bytes
/// written: fewer than asked only after an error.
size_t writeAll(int fd, std::span<const uint8_t> bytes) noexcept;

/// writeAll to standard output. After a write that failed nothing more is written to it:
/// commands behind a hole would print anything.
size_t writeToPrinter(std::span<const uint8_t> bytes) noexcept;

/// The errno of the write that failed; 0 where none did.
[[nodiscard]] int printerError() noexcept;

}  // namespace velka
