#include "Calibration.h"

#include <algorithm>
#include <array>

#include "Files.h"
#include "PlacementPage.h"
#include "Report.h"
#include "Views.h"

namespace velka::view {
namespace {

struct Calibration {
  const char* name;
  DotDrawing (*page)();
};

constexpr std::array<Calibration, 1> kCalibrations{{{"placement", placementPage}}};

const Calibration* find(const std::string& name) {
  const auto* found = std::ranges::find(kCalibrations, name, &Calibration::name);
  return found == kCalibrations.end() ? nullptr : found;
}

}  // namespace

bool isCalibration(const std::string& name) {
  return find(name) != nullptr;
}

std::string calibrationNames() {
  std::string names;
  for (const Calibration& calibration : kCalibrations) {
    names += (names.empty() ? "" : ", ") + std::string(calibration.name);
  }
  return names;
}

int writeCalibration(const Arguments& arguments) {
  const Calibration* calibration = find(arguments.calibration);
  if (calibration == nullptr) return fail("no page of that name", kWrongUse);
  const auto pdf = pdfOf(calibration->page());
  if (const auto* why = std::get_if<std::string>(&pdf)) return fail(*why);
  const std::string name =
      arguments.output.empty() ? arguments.calibration + ".pdf" : arguments.output;
  if (auto problem = writeFile(name, std::get<std::vector<uint8_t>>(pdf))) return fail(*problem);
  return kDone;
}

}  // namespace velka::view
