#include "Paper.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "BlockSpan.h"

namespace velka::decode {
namespace {

using Column = std::array<uint8_t, 9>;

// The pins that strike anywhere in a block.
Column pinsInUse(const Block& block) {
  Column pins{};
  const size_t bytes = block.mode.bytesPerColumn;
  for (size_t i = 0; i < block.data.size(); i += bytes) {
    for (size_t byte = 0; byte < bytes; ++byte) pins.at(byte) |= block.data[i + byte];
  }
  return pins;
}

bool isSet(const Column& column, int32_t bit) {
  return (column.at(static_cast<size_t>(bit / 8)) & (0x80U >> static_cast<unsigned>(bit % 8))) != 0;
}

// The place of the highest and of the lowest dot; none without a dot.
std::optional<std::pair<int64_t, int64_t>> rowsOf(const Block& block, Model model) {
  const Column pins = pinsInUse(block);
  std::optional<std::pair<int64_t, int64_t>> rows;
  for (int32_t bit = 0; bit < 8 * block.mode.bytesPerColumn; ++bit) {
    if (!isSet(pins, bit)) continue;
    const int64_t y = block.y + int64_t{pinOf(model, bit, block.colour).slot} * block.mode.dotPitch;
    rows = {rows ? rows->first : y, y};
  }
  return rows;
}

void widenDown(const Block& block, Model model, int64_t high, Area& area) {
  const bool within = block.y >= area.top && lowestPinY(block, model) + high <= area.bottom;
  if (within) return;
  const auto rows = rowsOf(block, model);
  if (!rows) return;
  area.top = std::min(area.top, rows->first);
  area.bottom = std::max(area.bottom, rows->second + high);
}

bool isBlank(const Block& block, int64_t column) {
  const auto bytes = static_cast<int64_t>(block.mode.bytesPerColumn);
  const auto first = block.data.begin() + column * bytes;
  return std::all_of(first, first + bytes, [](uint8_t byte) { return byte == 0; });
}

// Columns inside the area need no look.
void widenAcross(const Block& block, int64_t wide, Area& area) {
  const int64_t columns = columnsOf(block);
  const auto placeOf = [&](int64_t column) { return block.x + column * block.mode.columnPitch; };
  int64_t first = 0;
  while (first < columns && placeOf(first) < area.left && isBlank(block, first)) ++first;
  if (first < columns) area.left = std::min(area.left, placeOf(first));
  int64_t last = columns - 1;
  while (last >= 0 && placeOf(last) + wide > area.right && isBlank(block, last)) --last;
  if (last >= 0) area.right = std::max(area.right, placeOf(last) + wide);
}

}  // namespace

Area inkedArea(const Page& page, Model model, const Grid& grid) {
  Area area{INT64_MAX, INT64_MAX, INT64_MIN, INT64_MIN};
  const int64_t high = dotHeight(page, grid) * grid.cell();
  const auto take = [&](const Block& block) {
    widenDown(block, model, high, area);
    if (area.top > area.bottom) return;  // no dot so far
    widenAcross(block, dotWidth(block, grid) * grid.cell(), area);
  };
  // The ends first: most of what lies between them is inside then.
  if (!page.blocks.empty()) take(page.blocks.back());
  for (const Block& block : page.blocks) take(block);
  return area.empty() ? Area{} : area;
}

InksInUse inksInUse(const Page& page, Model model) {
  InksInUse inks;
  for (const Block& block : page.blocks) {
    if (inks.black && inks.red) break;
    // On the standard head a block has one ink.
    if (!isOrlo(model) && (block.colour == 1 ? inks.red : inks.black)) continue;
    const Column pins = pinsInUse(block);
    for (int32_t bit = 0; bit < 8 * block.mode.bytesPerColumn; ++bit) {
      if (!isSet(pins, bit)) continue;
      (pinOf(model, bit, block.colour).ink == Ink::Red ? inks.red : inks.black) = true;
    }
  }
  return inks;
}

int64_t formLength(const Page& page) {
  return int64_t{page.lines} * (kUnitsPerInch / 6);
}

Paper paperOf(const Page& page, Model model, const Grid& grid, PaperWidth width) {
  const Area inked = inkedArea(page, model, grid);
  return {width.fixed ? width.units : std::max(width.units, inked.right),
          std::max(formLength(page), inked.bottom)};
}

}  // namespace velka::decode
