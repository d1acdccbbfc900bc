#include "PaperView.h"

#include "PageCells.h"

namespace velka::view {

double streamDpi(const PaperView& view) {
  return static_cast<double>(decode::kUnitsPerInch) / static_cast<double>(view.grid.cell());
}

uint64_t dotsBesidePaper(const decode::Page& page, const PaperView& view) {
  return decode::dotsOutside(page, view.model,
                             decode::paperOf(page, view.model, view.grid, view.width));
}

}  // namespace velka::view
