#include "CommandBuilders.h"

#include <array>
#include <limits>

namespace velka {

bool prepareOutput(const BuilderOutput& out, size_t needed, Capacity check) noexcept {
  if (!out.isComplete() || needed > std::numeric_limits<unsigned int>::max()) return false;
  if (*out.buffer == nullptr) {
    *out.buffer = zeroedBytes(needed).release();
    return *out.buffer != nullptr;
  }
  if (check == Capacity::Checked && *out.capacity < needed) {
    *out.length = static_cast<unsigned int>(needed);
    return false;
  }
  return true;
}

void reportWritten(const BuilderOutput& out, size_t written) noexcept {
  *out.capacity = static_cast<unsigned int>(written);
  *out.length = static_cast<unsigned int>(written);
}

bool deliver(const BuilderOutput& out, std::span<const uint8_t> bytes, Capacity check) noexcept {
  if (!prepareOutput(out, bytes.size(), check)) return false;
  std::copy(bytes.begin(), bytes.end(), *out.buffer);
  reportWritten(out, bytes.size());
  return true;
}

bool buildSetUnit(int unit, const BuilderOutput& out) noexcept {
  return deliver(out, setUnit(unit), Capacity::Checked);
}

bool buildXMove(short kind, float divisor, int x, const BuilderOutput& out) noexcept {
  constexpr short kAbsolute = 1;
  constexpr short kRelative = 2;
  const MoveKind move = kind == kAbsolute ? MoveKind::Absolute : MoveKind::Relative;
  const auto bytes = horizontalMove(move, divisor, x);
  // Deliberate: the buffer is there before the kind is looked at.
  if (!prepareOutput(out, bytes.size(), Capacity::Trusted)) return false;
  if (kind != kAbsolute && kind != kRelative) return false;
  return deliver(out, bytes, Capacity::Trusted);
}

bool buildRelativeYMove(short ydpi, int64_t rows, const BuilderOutput& out) noexcept {
  const RelativeYMove move(ydpi, rows);
  if (!prepareOutput(out, move.capacity(), Capacity::Checked)) return false;
  move.write({*out.buffer, move.size()});
  reportWritten(out, move.size());
  return true;
}

bool buildAdvanceYMove(short ydpi, int rows, const BuilderOutput& out) noexcept {
  const AdvanceYMove move(ydpi, rows);
  if (!prepareOutput(out, move.size(), Capacity::Checked)) return false;
  move.write({*out.buffer, move.size()});
  reportWritten(out, move.size());
  return true;
}

bool CommandSink::moveY(short ydpi, int64_t rows) const noexcept {
  const RelativeYMove move(ydpi, rows);
  const MallocBytes bytes = zeroedBytes(move.size());
  if (bytes == nullptr || !append(setUnit(kVerticalUnit))) return false;
  move.write({bytes.get(), move.size()});
  return append({bytes.get(), move.size()});
}

bool CommandSink::moveToX(float divisor, int x) const noexcept {
  return append(setUnit(kHorizontalUnit)) && append(horizontalMove(MoveKind::Absolute, divisor, x));
}

}  // namespace velka
