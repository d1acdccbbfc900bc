#include "JobOptions.h"

#include <algorithm>

namespace velka::app {
namespace {

std::string chosen(const VendorOption& option, const JobChoices& choices) {
  if (option.name == "OutputColorType" && choices.monochrome && !choices.inkStated) return "Black";
  if (option.name == "PdfPreprocess" && !choices.pdfCopy) return "no";
  const auto stated = choices.vendor.find(option.name);
  if (stated == choices.vendor.end()) return option.defaultChoice;
  const bool offered = std::ranges::any_of(
      option.choices, [&](const Choice& choice) { return choice.name == stated->second; });
  return offered ? stated->second : option.defaultChoice;
}

}  // namespace

std::string filterOptions(const Model& model, const JobChoices& choices) {
  std::string text;
  for (const VendorOption& option : model.options) {
    if (option.name == "Resolution") continue;
    if (!text.empty()) text += ' ';
    text.append(option.name).append("=").append(chosen(option, choices));
  }
  return text;
}

}  // namespace velka::app
