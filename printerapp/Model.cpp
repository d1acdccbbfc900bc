#include "Model.h"

#include <cups/ppd.h>
#include <cups/pwg.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <memory>
#include <set>
#include <span>

#include "EmbeddedPpds.h"
#include "MemoryFile.h"

namespace velka::app {
namespace {

using Ppd = std::unique_ptr<ppd_file_t, decltype(&ppdClose)>;

Ppd openPpd(std::string_view text) {
  UniqueFd file = fileOf(text);
  if (!file || lseek(file.get(), 0, SEEK_SET) != 0) return {nullptr, &ppdClose};
  // The reader closes it.
  return {ppdOpenFd(file.release()), &ppdClose};
}

// Pairs of an option and a choice that dialogs hide: the names that choices once had.
std::set<std::string> oldNames(ppd_file_t* ppd) {
  std::set<std::string> names;
  for (const ppd_const_t& pair :
       std::span(ppd->consts, static_cast<size_t>(std::max(ppd->num_consts, 0)))) {
    if (std::strcmp(pair.option1, "OldNames") == 0)
      names.insert(std::string(pair.option2) + " " + pair.choice2);
  }
  return names;
}

// Those that are no option of the filter's own: paper goes by its own name, all pages have
// one colour model, and old names are left out.
bool isPlumbing(std::string_view keyword) {
  return keyword == "PageSize" || keyword == "PageRegion" || keyword == "ColorModel" ||
         keyword == "OldNames";
}

VendorOption readOption(const ppd_option_t& option, const std::set<std::string>& old) {
  VendorOption read{option.keyword, option.text, {}, option.defchoice};
  for (const ppd_choice_t& choice :
       std::span(option.choices, static_cast<size_t>(option.num_choices))) {
    if (!old.contains(read.name + " " + choice.choice))
      read.choices.push_back({choice.choice, choice.text});
  }
  return read;
}

std::vector<VendorOption> readOptions(ppd_file_t* ppd) {
  const std::set<std::string> old = oldNames(ppd);
  std::vector<VendorOption> options;
  for (const ppd_group_t& group : std::span(ppd->groups, static_cast<size_t>(ppd->num_groups))) {
    for (const ppd_option_t& option :
         std::span(group.options, static_cast<size_t>(group.num_options))) {
      if (!isPlumbing(option.keyword)) options.push_back(readOption(option, old));
    }
  }
  return options;
}

int hundredths(float points) {
  return static_cast<int>(std::lround(static_cast<double>(points) * 2540 / 72));
}

std::string millimetres(int value) {
  std::string text = std::to_string(value / 100);
  if (const int rest = value % 100; rest != 0) {
    text += '.';
    text += std::to_string(rest / 10);
    if (rest % 10 != 0) text += std::to_string(rest % 10);
  }
  return text;
}

std::string measuresOf(const Paper& paper) {
  return millimetres(paper.width).append("x").append(millimetres(paper.length)).append("mm");
}

// The paper's standard name; where it has none, one that tells its measures.
Paper readPaper(const ppd_size_t& size) {
  Paper paper{"", hundredths(size.width), hundredths(size.length)};
  const bool measures = size.name[0] >= '0' && size.name[0] <= '9';
  if (const pwg_media_t* known = measures ? nullptr : pwgMediaForPPD(size.name)) {
    return {known->pwg, known->width, known->length};
  }
  paper.media = paper.width < 20000 ? "om_roll-" : "om_form-";
  // Such names are in small letters.
  for (const char* c = size.name; *c != '\0'; ++c)
    paper.media += *c >= 'A' && *c <= 'Z' ? static_cast<char>(*c - 'A' + 'a') : *c;
  paper.media.append("_").append(measuresOf(paper));
  return paper;
}

void readPapers(ppd_file_t* ppd, Model& model) {
  for (const ppd_size_t& size : std::span(ppd->sizes, static_cast<size_t>(ppd->num_sizes))) {
    if (std::strcmp(size.name, "Custom") == 0) continue;
    model.papers.push_back(readPaper(size));
    if (size.marked != 0) model.defaultPaper = model.papers.back();
  }
  const auto custom = [](const char* kind, const float* points) {
    Paper paper{kind, hundredths(points[0]), hundredths(points[1])};
    paper.media.append(measuresOf(paper));
    return paper;
  };
  model.smallest = custom("custom_min_", ppd->custom_min);
  model.largest = custom("custom_max_", ppd->custom_max);
}

bool readModel(Model& model) {
  const Ppd ppd = openPpd(model.ppd);
  if (ppd == nullptr) return false;
  ppdMarkDefaults(ppd.get());
  model.makeAndModel = ppd->modelname;
  model.copiesByPrinter = ppd->manual_copies == 0;
  model.options = readOptions(ppd.get());
  if (const VendorOption* resolution = model.option("Resolution")) {
    for (const Choice& choice : resolution->choices)
      model.resolutions.push_back(resolutionOf(choice.name));
  }
  readPapers(ppd.get(), model);
  return true;
}

std::vector<Model> readModels() {
  std::vector<Model> both(2);
  both[0].driver = "velka_standard";
  both[0].ppd = embeddedPpd("velka-standard.ppd").value_or("");
  both[1].driver = "velka_orlo";
  both[1].ppd = embeddedPpd("velka-orlo.ppd").value_or("");
  if (!readModel(both[0]) || !readModel(both[1])) both.clear();
  return both;
}

}  // namespace

const VendorOption* Model::option(std::string_view name) const noexcept {
  const auto found = std::ranges::find(options, name, &VendorOption::name);
  return found == options.end() ? nullptr : &*found;
}

const std::vector<Model>& models() {
  static const std::vector<Model> both = readModels();
  return both;
}

const Model* modelOf(std::string_view driver) {
  const auto found = std::ranges::find(models(), driver, &Model::driver);
  return found == models().end() ? nullptr : &*found;
}

Resolution resolutionOf(std::string_view choice) noexcept {
  if (!choice.ends_with("dpi")) return {};
  const char* end = choice.data() + choice.size() - 3;
  Resolution r;
  const auto x = std::from_chars(choice.data(), end, r.x);
  if (x.ec != std::errc{}) return {};
  r.y = r.x;
  if (x.ptr == end) return r;
  const auto y = std::from_chars(x.ptr + 1, end, r.y);
  if (*x.ptr != 'x' || y.ec != std::errc{} || y.ptr != end) return {};
  return r;
}

}  // namespace velka::app
