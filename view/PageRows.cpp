#include "PageRows.h"

#include <algorithm>
#include <utility>

#include "PageCells.h"
#include "Pins.h"
#include "Scaling.h"

namespace velka::view {
namespace {

constexpr double kPinsDpi = 360;  // a dot is not quite three pixels wide

// The colours of a page that strikes these inks.
std::vector<uint32_t> coloursOf(const decode::InksInUse& inks) {
  std::vector<uint32_t> colours{kWhite};
  if (inks.black) colours.push_back(kBlack);
  if (inks.red) colours.push_back(kRed);
  return colours;
}

// A pixel a cell. Where black and red meet, black shows.
class CellRows : public PictureRows {
 public:
  CellRows(const PictureSize& size, const decode::Page& page, const PaperView& view,
           const decode::Paper& paper)
      : PictureRows(size, coloursOf(decode::inksInUse(page, view.model))),
        cells_(page, view.model, view.grid, paper) {}

  [[nodiscard]] bool isBlank(int64_t top, int64_t rows) const override {
    return cells_.isBlank(top, rows);
  }

  void drawNumbers(int64_t top, std::span<uint8_t> numbers) override {
    // A picture has at least one pixel, a sheet may have no cell.
    if (cells_.width() == 0 || cells_.height() == 0) return PictureRows::drawNumbers(top, numbers);
    cells_.draw(top, numbers);
    static_assert(decode::kBlackCell == 1 && decode::kRedCell == 2);
    constexpr uint8_t kBoth = decode::kBlackCell | decode::kRedCell;
    const bool oneInk = colours().size() <= 2;
    for (uint8_t& number : numbers) {
      const uint8_t inks = number & kBoth;
      const uint8_t shown = inks == kBoth ? decode::kBlackCell : inks;
      number = oneInk ? std::min<uint8_t>(shown, 1) : shown;
    }
  }

 private:
  decode::PageCells cells_;
};

}  // namespace

std::optional<PictureSize> sheetSize(const PaperView& view, const decode::Paper& paper) {
  const PictureSize size = {std::max<int64_t>(1, decode::cellsIn(view.grid, paper.width)),
                            std::max<int64_t>(1, decode::cellsIn(view.grid, paper.length)),
                            streamDpi(view)};
  if (size.width > kWidestSource || size.height > kLongestSource) return std::nullopt;
  return size;
}

RowsDrawing inWantedSize(Rows rows, const PaperView& view) {
  const double own = rows->size().dpi;
  return scaled(std::move(rows), view.dpi ? *view.dpi : own * view.scale);
}

RowsDrawing pageRows(const decode::Page& page, const PaperView& view) {
  const decode::Paper paper = decode::paperOf(page, view.model, view.grid, view.width);
  if (view.pins) return pinRows(page, view, paper, view.dpi ? *view.dpi : kPinsDpi * view.scale);
  const auto size = sheetSize(view, paper);
  if (!size) return kBeyondDrawing;
  return inWantedSize(std::make_unique<CellRows>(*size, page, view, paper), view);
}

}  // namespace velka::view
