#include "Driver.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "DeviceOutput.h"
#include "Model.h"
#include "PrintJob.h"
#include "Texts.h"
#include "Watch.h"

namespace velka::app {
namespace {

// The library has room for four of the head's pairs. print-quality takes the first for a
// draft, the third for normal and the last for high; all ten are choices of Resolution.
constexpr std::array<Resolution, 4> kResolutions = {
    {{120, 180}, {360, 180}, {180, 180}, {360, 360}}};
constexpr Resolution kNormal = {180, 180};
constexpr const char* kSheets = "main";
constexpr const char* kRoll = "main-roll";
constexpr const char* kRollReady = "om_roll-80x200mm_80x200mm";

void copyText(const std::string& text, std::span<char> into) {
  papplCopyString(into.data(), text.c_str(), into.size());
}

pappl_media_col_t readyMedia(const Paper& paper, const char* source) {
  pappl_media_col_t media = {};
  copyText(paper.media, media.size_name);
  copyText(source, media.source);
  copyText("stationery", media.type);
  media.size_width = paper.width;
  media.size_length = paper.length;
  return media;
}

void describePaper(const Model& model, pappl_pr_driver_data_t& data) {
  data.borderless = true;
  for (const Paper& paper : model.papers) data.media[data.num_media++] = paper.media.c_str();
  data.media[data.num_media++] = model.smallest.media.c_str();
  data.media[data.num_media++] = model.largest.media.c_str();
  data.num_source = 2;
  data.source[0] = kSheets;
  data.source[1] = kRoll;
  data.num_type = 1;
  data.type[0] = "stationery";
  data.media_ready[0] = readyMedia(model.defaultPaper, kSheets);
  const auto roll = std::ranges::find(model.papers, kRollReady, &Paper::media);
  data.media_ready[1] = readyMedia(roll == model.papers.end() ? model.defaultPaper : *roll, kRoll);
  data.media_default = data.media_ready[0];
}

void describePages(pappl_pr_driver_data_t& data) {
  for (const Resolution& r : kResolutions) {
    data.x_resolution[data.num_resolution] = r.x;
    data.y_resolution[data.num_resolution++] = r.y;
  }
  data.x_default = kNormal.x;
  data.y_default = kNormal.y;
  data.raster_types =
      PAPPL_PWG_RASTER_TYPE_SRGB_8 | PAPPL_PWG_RASTER_TYPE_SGRAY_8 | PAPPL_PWG_RASTER_TYPE_BLACK_8;
  data.color_supported = PAPPL_COLOR_MODE_AUTO | PAPPL_COLOR_MODE_AUTO_MONOCHROME |
                         PAPPL_COLOR_MODE_COLOR | PAPPL_COLOR_MODE_MONOCHROME;
  // By name: newer CUPS (2.4.10) makes "auto" the first kind of Apple raster, which is grey.
  data.color_default = PAPPL_COLOR_MODE_COLOR;
  data.content_default = PAPPL_CONTENT_AUTO;
  data.quality_default = IPP_QUALITY_NORMAL;
  // Nothing of a page is lost unless its job asks for that.
  data.scaling_default = PAPPL_SCALING_AUTO_FIT;
  // IPP has no other word for it; a page that lies the other way is turned unless its job
  // states an orientation.
  data.orient_default = IPP_ORIENT_PORTRAIT;
  data.duplex = PAPPL_DUPLEX_NONE;
  data.sides_supported = PAPPL_SIDES_ONE_SIDED;
  data.sides_default = PAPPL_SIDES_ONE_SIDED;
  data.num_bin = 1;
  data.bin[0] = "face-up";
  data.output_face_up = true;
}

// Nothing that the printer takes makes it blink or ring.
void identify(pappl_printer_t* printer, pappl_identify_actions_t /*actions*/, const char* message) {
  papplLogPrinter(printer, PAPPL_LOGLEVEL_INFO, "Somebody wants to know which printer this is%s%s",
                  message == nullptr ? "" : ": ", message == nullptr ? "" : message);
}

void describeDevice(const Model& model, pappl_pr_driver_data_t& data) {
  copyText(model.makeAndModel, data.make_and_model);
  data.kind = PAPPL_KIND_DOCUMENT | PAPPL_KIND_RECEIPT | PAPPL_KIND_ROLL;
  data.ppm = 2;
  data.ppm_color = 1;
  data.identify_cb = identify;
  data.identify_default = PAPPL_IDENTIFY_ACTIONS_DISPLAY;
  data.identify_supported = PAPPL_IDENTIFY_ACTIONS_DISPLAY;
  data.status_cb = updateStatus;
  data.delete_cb = endWatch;
  data.has_supplies = true;
}

void addKeyword(ipp_t* attributes, const char* name, const char* value) {
  ippAddString(attributes, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, name, nullptr, value);
}

// What the standard for driverless printing wants to hear, and the library leaves out.
void addFacts(ipp_t* attributes) {
  addKeyword(attributes, "print-rendering-intent-default", "auto");
  addKeyword(attributes, "print-rendering-intent-supported", "auto");
  addKeyword(attributes, "pwg-raster-document-sheet-back", "normal");
  ippAddBoolean(attributes, IPP_TAG_PRINTER, "preferred-attributes-supported", 0);
}

void addOption(const VendorOption& option, pappl_pr_driver_data_t& data, ipp_t* attributes) {
  if (data.num_vendor == PAPPL_MAX_VENDOR) return;
  data.vendor[data.num_vendor++] = option.name.c_str();
  std::vector<const char*> choices;
  for (const Choice& choice : option.choices) choices.push_back(choice.name.c_str());
  ippAddString(attributes, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, (option.name + "-default").c_str(),
               nullptr, option.defaultChoice.c_str());
  ippAddStrings(attributes, IPP_TAG_PRINTER, IPP_TAG_KEYWORD, (option.name + "-supported").c_str(),
                static_cast<int>(choices.size()), nullptr, choices.data());
}

}  // namespace

std::span<pappl_pr_driver_t> drivers() {
  static std::vector<pappl_pr_driver_t> all;
  if (all.empty()) {
    for (const Model& model : models()) {
      all.push_back({model.driver.c_str(), model.makeAndModel.c_str(), nullptr, nullptr});
    }
  }
  return all;
}

bool describeDriver(pappl_system_t* system, const char* driver, const char* /*uri*/,
                    const char* /*deviceId*/, pappl_pr_driver_data_t* data, ipp_t** attributes,
                    void* /*context*/) {
  const Model* model = driver == nullptr ? nullptr : modelOf(driver);
  if (model == nullptr || data == nullptr || attributes == nullptr) return false;
  setRasterCallbacks(*data);
  describeDevice(*model, *data);
  describePages(*data);
  describePaper(*model, *data);
  *attributes = ippNew();
  addFacts(*attributes);
  tellTexts(system, *attributes);
  for (const VendorOption& option : model->options) addOption(option, *data, *attributes);
  return true;
}

void nameSupplies(pappl_printer_t* printer, void* /*context*/) {
  constexpr int kUnknown = -1;
  pappl_supply_t inks[2] = {
      {PAPPL_SUPPLY_COLOR_BLACK, "Black ink", true, kUnknown, PAPPL_SUPPLY_TYPE_INK},
      {PAPPL_SUPPLY_COLOR_MULTIPLE, "Red ink", true, kUnknown, PAPPL_SUPPLY_TYPE_INK}};
  papplPrinterSetSupplies(printer, 2, inks);
}

// By the model that the device names, as in "MFG:Velka;MDL:Orlo;".
const char* matchDriver(const char* /*info*/, const char* /*uri*/, const char* deviceId,
                        void* /*context*/) {
  cups_option_t* pairs = nullptr;
  const int count = papplDeviceParseID(deviceId, &pairs);
  const auto value = [&](const char* name, const char* other) -> std::string {
    const char* found = cupsGetOption(name, count, pairs);
    if (found == nullptr) found = cupsGetOption(other, count, pairs);
    return found == nullptr ? "" : found;
  };
  const std::string named = value("MANUFACTURER", "MFG") + " " + value("MODEL", "MDL");
  cupsFreeOptions(count, pairs);
  if (!named.starts_with("Velka")) return nullptr;
  for (const Model& model : models()) {
    const std::string kind = model.makeAndModel.substr(model.makeAndModel.find(' ') + 1);
    if (named.find(kind) != std::string::npos) return model.driver.c_str();
  }
  return nullptr;
}

}  // namespace velka::app
