// The buffer discipline of the command streams: blocks from malloc that grow by
// exactly what is appended.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

namespace velka {

struct FreeDeleter {
  void operator()(void* block) const noexcept { std::free(block); }
};
/// A malloc'ed block with one owner; `release()` hands it across the public surface.
using MallocBytes = std::unique_ptr<uint8_t[], FreeDeleter>;

/// A zeroed block of `bytes` bytes (at least one), null when memory runs out.
[[nodiscard]] MallocBytes zeroedBytes(size_t bytes) noexcept;

/// Grows `*buffer` from `*size` to `*size + extra` bytes, the new ones set to
/// `fill`. False, with both unchanged, when memory or 32 bits run out.
[[nodiscard]] bool growBuffer(unsigned char** buffer, unsigned int* size, unsigned int extra,
                              uint8_t fill) noexcept;

/// Grows the buffer by the size of `bytes` and copies them to `*writePosition`,
/// which then becomes the buffer's length.
[[nodiscard]] bool appendAt(unsigned char** buffer, unsigned int* length,
                            unsigned int* writePosition, std::span<const uint8_t> bytes) noexcept;

}  // namespace velka
