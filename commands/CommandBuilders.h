// The builder contract of the public surface, once for both encoders: where the
// bytes go, who allocates, what the capacity and length arguments say.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "CommandBytes.h"
#include "GrowingBuffer.h"

namespace velka {

/// The three pointer arguments of a builder: the buffer, its capacity and the
/// length produced.
struct BuilderOutput {
  unsigned char** buffer;
  unsigned int* capacity;
  unsigned int* length;

  [[nodiscard]] bool isComplete() const noexcept {
    return buffer != nullptr && capacity != nullptr && length != nullptr;
  }
};

enum class Capacity : uint8_t { Checked, Trusted };

/// Makes room for `needed` bytes: allocates them zeroed where there is no buffer,
/// else compares the capacity where the builder checks it. False leaves an
/// existing buffer alone and, after a failed comparison, the need in `*length`.
[[nodiscard]] bool prepareOutput(const BuilderOutput& out, size_t needed, Capacity check) noexcept;

/// Reports `written` bytes through capacity and length.
void reportWritten(const BuilderOutput& out, size_t written) noexcept;

/// A builder of fixed bytes.
[[nodiscard]] bool deliver(const BuilderOutput& out, std::span<const uint8_t> bytes,
                           Capacity check) noexcept;

[[nodiscard]] bool buildSetUnit(int unit, const BuilderOutput& out) noexcept;
/// `kind` 1 absolute, 2 relative; any other fails.
[[nodiscard]] bool buildXMove(short kind, float divisor, int x, const BuilderOutput& out) noexcept;
[[nodiscard]] bool buildRelativeYMove(short ydpi, int64_t rows, const BuilderOutput& out) noexcept;
[[nodiscard]] bool buildAdvanceYMove(short ydpi, int rows, const BuilderOutput& out) noexcept;

/// A buffer that commands are appended to, as the encoders keep it.
struct CommandSink {
  unsigned char** buffer;
  unsigned int* length;
  unsigned int* writePosition;

  [[nodiscard]] bool append(std::span<const uint8_t> bytes) const noexcept {
    return appendAt(buffer, length, writePosition, bytes);
  }
  /// Set unit 1/360 inch and a paper move of `rows`.
  [[nodiscard]] bool moveY(short ydpi, int64_t rows) const noexcept;
  /// Set unit 1/60 inch and an absolute head move to x / divisor.
  [[nodiscard]] bool moveToX(float divisor, int x) const noexcept;
};

}  // namespace velka
