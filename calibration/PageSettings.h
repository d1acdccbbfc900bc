// What a calibration page is made for: the paper, and the options it will be printed with.
#pragma once

#include <cups/ppd.h>

#include <string>

#include "InitalizeOemCfg.h"
#include "PageWriter.h"

namespace velka::calibration {

struct PageSettings {
  std::string pageSize = "80x200mm";  ///< as `PageSize` names it
  double width = kRollWidth;          ///< points
  double length = kRollLength;        ///< points
  tagOEMCFG options = defaultOemdev[0];
};

/// What the PPD's marked choices say.
[[nodiscard]] PageSettings settingsOf(ppd_file_t* ppd);

/// An empty drawing on that paper.
[[nodiscard]] DotDrawing drawingOn(const PageSettings& settings, const std::string& title,
                                   int dpi = 180);

/// The lines that say how to print the page: `lp` and its options, and those of `others`.
void addPrintLines(PageWriter& writer, const PageSettings& settings, const std::string& others);

/// The drawing if the paper holds it, else why it does not.
[[nodiscard]] Drawn fitting(DotDrawing drawing, const PageSettings& settings);

}  // namespace velka::calibration
