#include "PagePicture.h"

#include <utility>

#include "PageRows.h"
#include "Scaling.h"

namespace velka::view {
namespace {

Drawing wholeOrWhy(RowsDrawing drawing) {
  if (auto* why = std::get_if<std::string>(&drawing)) return std::move(*why);
  return wholePicture(*std::get<Rows>(drawing));
}

}  // namespace

Drawing drawPage(const decode::Page& page, const PaperView& view, uint64_t& outside) {
  outside = dotsBesidePaper(page, view);
  return wholeOrWhy(pageRows(page, view));
}

Drawing resample(Picture picture, double dpi) {
  return wholeOrWhy(scaled(rowsOf(std::move(picture)), dpi));
}

}  // namespace velka::view
