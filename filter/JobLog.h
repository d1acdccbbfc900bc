// The file of the job log.
#pragma once

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

/// Says, likewise, that the log stays empty because its thread cannot be started.
void tellLogStaysEmpty() noexcept;

}  // namespace velka
