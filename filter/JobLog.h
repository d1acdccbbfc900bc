// The file of the job log.
#pragma once

#include <cstdint>

namespace velka {

inline constexpr const char* kJobLog = "/tmp/velka.log";

/// What kept a file from being opened for writing, for people to read. `error` is what
/// the system said, 0 where it had no objection. Null where a link, FIFO, folder or device
/// stands at `path`: whoever put it there wants no log and knows.
[[nodiscard]] const char* whyNotOpened(const char* path, int error) noexcept;

/// Empties the job log, or makes it. Where it cannot be opened the job prints without
/// one, and a warning for the print scheduler's log says why, if anybody needs to know.
/// Returns whether it could.
bool emptyJobLog() noexcept;

/// To be called behind a line that was logged when `linesBefore` had been written. Where it
/// did not reach the file, though lines before it did, a warning for the print scheduler's
/// log says that the job's own ends early: what became of later pages stands in neither.
void tellIfLogEnded(uint64_t linesBefore) noexcept;

/// Says, likewise, that the log stays empty because its thread cannot be started.
void tellLogStaysEmpty() noexcept;

}  // namespace velka
