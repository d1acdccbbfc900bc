#include "PageCheck.h"

#include <algorithm>
#include <cinttypes>
#include <tuple>
#include <vector>

#include "BandGaps.h"
#include "Carriage.h"
#include "Paper.h"
#include "TextFormat.h"

namespace velka::decode {
namespace {

constexpr int64_t kLine = kUnitsPerInch / 6;
constexpr int64_t kLinesTold = 256;  // a form's length is told modulo this

// On the standard head, whose pins lie in their order.
bool isInked(const Block& block, int32_t pin) {
  const size_t bytes = block.mode.bytesPerColumn;
  const auto byte = static_cast<size_t>(pin / 8);
  for (size_t at = byte; at < block.data.size(); at += bytes) {
    if ((block.data[at] & (0x80U >> static_cast<unsigned>(pin % 8))) != 0) return true;
  }
  return false;
}

// A row of one ink and the place of the head that struck it.
struct StruckRow {
  int32_t colour;
  int64_t y;
  int64_t head;

  bool operator<(const StruckRow& other) const {
    return std::tie(colour, y, head) < std::tie(other.colour, other.y, other.head);
  }
};

uint64_t countMergedRows(const Page& page) {
  std::vector<StruckRow> rows;
  for (const Block& block : page.blocks) {
    for (int32_t pin = 0; pin < 8 * block.mode.bytesPerColumn; ++pin) {
      if (!isInked(block, pin)) continue;
      rows.push_back({block.colour, block.y + int64_t{pin} * block.mode.dotPitch, block.y});
    }
  }
  std::sort(rows.begin(), rows.end());
  uint64_t merged = 0;
  for (auto first = rows.begin(); first != rows.end();) {
    const auto end = std::find_if(first, rows.end(), [&](const StruckRow& row) {
      return row.colour != first->colour || row.y != first->y;
    });
    merged += std::prev(end)->head != first->head ? 1 : 0;
    first = end;
  }
  return merged;
}

bool isOneMode(const Page& page) {
  return std::ranges::all_of(page.blocks, [&](const Block& block) {
    return block.mode.code == page.blocks.front().mode.code;
  });
}

void checkForm(const Page& page, Model model, PageFlaws& flaws) {
  Grid grid;
  grid.add(page);
  const int64_t end = std::max(inkedArea(page, model, grid).bottom, page.headY);
  flaws.form = formLength(page);
  if (flaws.form == 0 || end <= flaws.form + kLine || end > kLinesTold * kLine) return;
  flaws.beyondForm = end - flaws.form;
}

}  // namespace

PageFlaws checkPage(const Page& page, Model model) {
  PageFlaws flaws;
  if (page.blocks.empty()) return flaws;
  if (model == Model::Standard && isOneMode(page)) {
    flaws.mergedRows = countMergedRows(page);
    findGaps(page, flaws);
  }
  checkForm(page, model, flaws);
  return flaws;
}

std::string textOf(const PageFlaws& flaws) {
  std::string text;
  const auto add = [&](const std::string& part) { text += (text.empty() ? "" : "; ") + part; };
  const double widest = millimetres(flaws.widestGap);
  const double first = millimetres(flaws.firstGap);
  if (flaws.gaps == 1) add(format("a gap in the print, %.2f mm at %.1f mm", widest, first));
  if (flaws.gaps > 1) {
    add(format("%" PRIu64 " gaps in the print, up to %.2f mm, the first at %.1f mm", flaws.gaps,
               widest, first));
  }
  if (flaws.mergedRows == 1) add("a row is printed over another");
  if (flaws.mergedRows > 1)
    add(format("%" PRIu64 " rows are printed over others", flaws.mergedRows));
  if (flaws.beyondForm > 0) {
    add(format("prints %.1f mm beyond its form of %.1f mm", millimetres(flaws.beyondForm),
               millimetres(flaws.form)));
  }
  return text;
}

}  // namespace velka::decode
