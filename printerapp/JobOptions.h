// What a job's attributes say to the filter: the text of options that its command line has.
#pragma once

#include <map>
#include <string>

#include "Model.h"

namespace velka::app {

/// What a job, or else its printer's defaults, chose.
struct JobChoices {
  std::map<std::string, std::string> vendor;  ///< by the options' names
  bool inkStated = false;                     ///< the job itself names OutputColorType
  bool monochrome = false;                    ///< it asks to be printed without colour
  bool pdfCopy = false;                       ///< a PDF of the pages is there for PdfPreprocess
};

/// "OutputColorType=Black RedMinValue=90 ...". Each option of the model stands there once:
/// what is no choice of it becomes the default, so nothing of a client's reaches the text.
/// A monochrome job prints black alone unless it names the inks. The resolution is not in
/// it, pages have theirs.
[[nodiscard]] std::string filterOptions(const Model& model, const JobChoices& choices);

}  // namespace velka::app
