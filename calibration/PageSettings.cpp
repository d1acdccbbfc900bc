#include "PageSettings.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace velka::calibration {
namespace {

// A paper of the user's own has no name, but measures in points.
std::string nameOf(const ppd_size_t& size) {
  if (std::string(size.name) != "Custom") return size.name;
  return "Custom." + std::to_string(std::lround(size.width)) + "x" +
         std::to_string(std::lround(size.length));
}

}  // namespace

PageSettings settingsOf(ppd_file_t* ppd) {
  PageSettings settings;
  InitalizeOemCfg(&settings.options, ppd, nullptr);
  if (const ppd_size_t* size = ppdPageSize(ppd, nullptr)) {
    settings.pageSize = nameOf(*size);
    settings.width = static_cast<double>(size->width);
    settings.length = static_cast<double>(size->length);
  }
  return settings;
}

DotDrawing drawingOn(const PageSettings& settings, const std::string& title, int dpi) {
  return {title, settings.width, settings.length, {}, dpi};
}

void addPrintLines(PageWriter& writer, const PageSettings& settings, const std::string& others) {
  writer.line("lp -o PageSize=" + settings.pageSize);
  writer.line("   " + others);
}

Drawn fitting(DotDrawing drawing, const PageSettings& settings) {
  const double dot = 72.0 / drawing.dpi;
  const bool fits = std::ranges::all_of(drawing.boxes, [&](const DotBox& box) {
    return (box.left + box.width) * dot <= drawing.width &&
           (box.top + box.height) * dot <= drawing.height;
  });
  if (fits) return drawing;
  return settings.pageSize + " is too small for this page, which needs 76 x 200 mm";
}

}  // namespace velka::calibration
