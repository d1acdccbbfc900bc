// Streams on files under directories that others may write to, such as /tmp.
#pragma once

#include <cstdio>
#include <memory>

namespace velka {

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using UniqueFile = std::unique_ptr<std::FILE, FileCloser>;

/// Opens our own file (see OwnFile.h) at `path` for writing, made with mode 0666 (less
/// the umask) if it is missing: at its end as with fopen "ab", or emptied as with "wb".
/// Null when `path` is null or leads to anything else: through a link or a second name
/// another user could point the job's log at a file that only we may write.
/// The descriptor is never 0, 1 or 2, even when the process was started with
/// those closed: the log must not end up in the printer's data.
[[nodiscard]] UniqueFile openRegularForWriting(const char* path, bool truncate) noexcept;

/// Opens the regular file at `path`, which may be a link, for reading. Null
/// when it cannot be opened or is no regular file.
[[nodiscard]] UniqueFile openRegularForReading(const char* path) noexcept;

}  // namespace velka
