#include "Files.h"
#include "MarkedOptions.h"
#include "Pages.h"
#include "Ppd.h"
#include "Report.h"
#include "Views.h"

namespace velka::view {
namespace {

using calibration::PageSettings;

// Without a PPD the standard model's own options and a roll of 80 mm.
Problem readSettings(const Arguments& arguments, PageSettings& settings) {
  if (arguments.ppd.empty()) return std::nullopt;
  Problem problem;
  const PpdFile ppd = openPpd(arguments.ppd, problem);
  if (!ppd) return problem;
  velka::markOptions(ppd.get(), arguments.options.c_str());
  settings = calibration::settingsOf(ppd.get());
  return std::nullopt;
}

Problem writePage(const calibration::DotDrawing& page, const std::string& name) {
  const auto pdf = pdfOf(page);
  if (const auto* why = std::get_if<std::string>(&pdf)) return *why;
  return writeFile(name, std::get<std::vector<uint8_t>>(pdf));
}

}  // namespace

int writeCalibration(const Arguments& arguments) {
  const calibration::Page* page = calibration::pageNamed(arguments.calibration);
  if (page == nullptr) return fail("no page of that name", kWrongUse);
  PageSettings settings;
  if (auto problem = readSettings(arguments, settings)) return fail(*problem);
  const calibration::Drawn drawn = page->draw(settings);
  if (const auto* why = std::get_if<std::string>(&drawn)) return fail(*why, kWrongUse);
  const std::string name =
      arguments.output.empty() ? arguments.calibration + ".pdf" : arguments.output;
  if (auto problem = writePage(std::get<calibration::DotDrawing>(drawn), name)) {
    return fail(*problem);
  }
  return kDone;
}

}  // namespace velka::view
