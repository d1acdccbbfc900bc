// Bytes of a job on their way from descriptor to descriptor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Descriptor.h"

namespace velka {

/// What happened to a stream: where it failed is not what the user has to know, on
/// which side it failed is.
enum class Passage { Complete, CannotRead, CannotWrite };

/// Reads up to `size` bytes, fewer only at the end of the stream or an error; errno
/// is 0 at the end.
[[nodiscard]] std::string readHead(int fd, size_t size);

/// Passes all that `from` still holds on to `to`. errno says why it stopped.
[[nodiscard]] Passage passOn(int from, int to) noexcept;

/// The same, `head` first.
[[nodiscard]] Passage passOn(std::string_view head, int from, int to) noexcept;

/// An empty file without a name in the folder that TMPDIR names (else /tmp).
[[nodiscard]] UniqueFd namelessFile();

}  // namespace velka
