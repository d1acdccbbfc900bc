// Files under directories that others may write to, such as /tmp, where only a file of
// our own may be read, written or removed.
//
// A file is our own when it is regular, belongs to this process's user and has one
// name. In a sticky directory nobody else can then replace it.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include "Descriptor.h"

namespace velka {

/// Whether root's files count too: nobody else can have put them there.
enum class OrRoots : bool { No, Yes };

/// Whether a file of this status is our own. One that lost its name since it was opened
/// still is; one with a second name may be anybody's.
[[nodiscard]] bool isOwn(const struct stat& status, OrRoots orRoots = OrRoots::No) noexcept;

/// Opens our own file at `path` with the flags of open(), with O_CREAT made where there
/// is none, its mode less the umask. None for links, FIFOs (which are not waited for),
/// folders, devices, files of somebody else or with a second name, and for null. Nothing
/// may be emptied before that is known, so O_TRUNC is not for here.
[[nodiscard]] UniqueFd openOwnFile(const char* path, int flags = O_RDONLY,
                                   mode_t mode = 0600) noexcept;

/// Whether `path` still names the open file.
[[nodiscard]] bool isNamed(const UniqueFd& file, const char* path) noexcept;

/// Makes an empty file of our own with mode 0600; one that is there is replaced if
/// it is our own. Returns whether that could be done.
[[nodiscard]] bool makeFreshOwnFile(const char* path) noexcept;

/// Remove our own file at `path`, or only if it is empty. Anything else stays.
void removeOwnFile(const char* path) noexcept;
void removeEmptyOwnFile(const char* path) noexcept;

/// Whether our own file at `path` holds anything.
[[nodiscard]] bool holdsOwnBytes(const char* path) noexcept;

}  // namespace velka
