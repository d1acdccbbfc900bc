// Which texts may become part of a command line or a file name.
#pragma once

#include <string_view>

namespace velka {

/// The job's files: this, the job id, and what tells them apart.
inline constexpr std::string_view kJobFilePrefix = "/tmp/VK_TEMP_CUPS_";

/// Whether a job id has only letters, digits, dots, underscores and hyphens. False
/// for null.
[[nodiscard]] bool isPlainName(const char* id) noexcept;

/// Whether a path has only those and slashes, and no hyphen in front, where a tool
/// would take it for an option. False for null and for an empty text.
[[nodiscard]] bool isPlainPath(const char* path) noexcept;

/// Whether the temporary PDF at `path` may be removed: not when the path was made
/// from a job id that leads elsewhere.
[[nodiscard]] bool isRemovable(const char* path) noexcept;

}  // namespace velka
