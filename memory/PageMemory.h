// Memory for page-sized blocks, so that a page costs its pixels and not the
// system's work of mapping and clearing fresh memory.
#pragma once

#include <cstddef>

namespace velka {

/// Makes `malloc` keep what is freed for the next page instead of returning it to
/// the system, and serve all threads from one heap. For the whole process; called once, before the
/// first page.
void keepFreedMemory() noexcept;

/// `bytes` bytes (at least one) from `malloc`, their contents undefined, on large
/// memory pages where the system has them. Null when memory runs out.
[[nodiscard]] unsigned char* pageBytes(size_t bytes) noexcept;

}  // namespace velka
