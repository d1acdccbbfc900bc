// Dot packing of one block.
#include "reference/ReferenceEncoder.h"

namespace velka::reference {

namespace {

// The bytes of one column, or false when a dot's row lies past the page.
bool packColumn(const Separation& planes, const Bytes& plane, const _RECTL& area, int x, int pass,
                Bytes& column) {
  const int h = area.bottom - area.top + 1;
  const int dots = 8 * static_cast<int>(column.size());
  for (int i = 0; i < dots; ++i) {
    const int row = h == 48 ? area.top + pass + 2 * i : area.top + pass + i;
    if (row >= planes.height) {
      return false;
    }
    const size_t index =
        static_cast<size_t>(row) * static_cast<size_t>(planes.width) + static_cast<size_t>(x);
    if (index >= plane.size()) {
      return false;
    }
    if (plane.at(index) == 0) {
      uint8_t& byte = column.at(static_cast<size_t>(i / 8));
      byte = static_cast<uint8_t>(byte | (1U << (7 - i % 8)));
    }
  }
  return true;
}

bool isBlank(const Bytes& column) {
  for (const uint8_t byte : column) {
    if (byte != 0) {
      return false;
    }
  }
  return true;
}

struct Packed {
  Bytes data;
  uint64_t leadingBlank = 0;
  uint64_t trailingBlank = 0;
  bool hasData = false;
};

Packed packColumns(const Separation& planes, const Bytes& plane, const _RECTL& area, int b,
                   int pass) {
  Packed packed;
  for (int x = area.left; x <= area.right; ++x) {
    Bytes column(static_cast<size_t>(b), 0);
    if (!packColumn(planes, plane, area, x, pass, column)) {
      continue;  // not stored: later columns move up
    }
    if (!isBlank(column)) {
      packed.trailingBlank = 0;
      packed.hasData = true;
    } else if (!packed.hasData && packed.data.size() == packed.leadingBlank) {
      // A length in bytes against a count of columns, on purpose: with several
      // bytes a column only the first blank one leads.
      packed.leadingBlank = packed.data.size() + 1;
    } else {
      packed.trailingBlank += 1;
    }
    append(packed.data, column);
  }
  return packed;
}

}  // namespace

Block packBlock(const Separation& planes, const _RECTL& area, int colour, BitImageMode mode,
                float xDivisor, int pass) {
  const Bytes& plane = colour == 1 ? planes.black : planes.red;
  const int b = mode.bytesPerColumn;
  const Packed packed = packColumns(planes, plane, area, b, pass != 0 ? 1 : 0);
  auto step = static_cast<uint64_t>(xDivisor);
  if (step < 1) {
    step = 1;
  }
  const uint64_t s = packed.leadingBlank - packed.leadingBlank % step;
  Block block;
  block.leadingSkip = static_cast<uint32_t>(s);
  if (!packed.hasData) {
    return block;
  }
  const auto width = static_cast<uint64_t>(area.right) - static_cast<uint64_t>(area.left) + 1;
  const uint64_t n = width - 1 - packed.trailingBlank - s;  // the last column is dropped on purpose
  Bytes data = packed.data;
  data.resize(width * static_cast<uint64_t>(b), 0);
  block.command = blockHeader(colour - 1, mode.mode, static_cast<uint32_t>(n));
  for (uint64_t i = 0; i < n * static_cast<uint64_t>(b); ++i) {
    block.command.push_back(data.at(s * static_cast<uint64_t>(b) + i));
  }
  return block;
}

}  // namespace velka::reference
