#include "OptionTable.h"

#include <algorithm>
#include <array>

#include "NearestName.h"
#include "Pages.h"

namespace velka::view {
namespace {

constexpr std::array<option, 30> kLong{{
    {"list", no_argument, nullptr, kList},
    {"stats", no_argument, nullptr, kStats},
    {"diff", no_argument, nullptr, kDiff},
    {"tone", no_argument, nullptr, kTone},
    {"from", required_argument, nullptr, kFrom},
    {"sheet", required_argument, nullptr, kSheet},
    {"by", required_argument, nullptr, kBy},
    {"serve", no_argument, nullptr, kServe},
    {"port", required_argument, nullptr, kPort},
    {"open", no_argument, nullptr, kOpen},
    {"calibration", required_argument, nullptr, kCalibration},
    {"save", required_argument, nullptr, kSave},
    {"ppd", required_argument, nullptr, kPpd},
    {"any-ppd", no_argument, nullptr, kAnyPpd},
    {"options", required_argument, nullptr, kOptions},
    {"options-file", required_argument, nullptr, kOptionsFile},
    {"model", required_argument, nullptr, kModel},
    {"width", required_argument, nullptr, kWidth},
    {"head-speed", required_argument, nullptr, kHeadSpeed},
    {"feed-speed", required_argument, nullptr, kFeedSpeed},
    {"page", required_argument, nullptr, kPage},
    {"dpi", required_argument, nullptr, kDpi},
    {"scale", required_argument, nullptr, kScale},
    {"pins", no_argument, nullptr, kPins},
    {"format", required_argument, nullptr, kFormat},
    {"output", required_argument, nullptr, 'o'},
    {"progress", no_argument, nullptr, kProgress},
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, 'V'},
    {nullptr, 0, nullptr, 0},
}};

constexpr unsigned bit(Action action) {
  return 1U << static_cast<unsigned>(action);
}

constexpr unsigned kPictures = bit(Action::Draw) | bit(Action::Diff) | bit(Action::Sheet);
constexpr unsigned kStreams = kPictures | bit(Action::List) | bit(Action::Stats);
constexpr unsigned kSettings = kStreams | bit(Action::Serve);
constexpr unsigned kFiles = kPictures | bit(Action::Calibration);

// Options that do nothing with some actions.
struct Use {
  int code;
  const char* name;
  unsigned actions;
};

constexpr std::array<Use, 18> kUses{{
    {kPpd, "--ppd", kSettings},
    {kAnyPpd, "--any-ppd", kSettings},
    {kOptions, "--options", kSettings},
    {kOptionsFile, "--options-file", kSettings},
    {kBy, "--by", bit(Action::Sheet)},
    {kPort, "--port", bit(Action::Serve)},
    {kOpen, "--open", bit(Action::Serve)},
    {kModel, "--model", kStreams},
    {kWidth, "--width", kPictures | bit(Action::Stats)},
    {kHeadSpeed, "--head-speed", bit(Action::Stats)},
    {kFeedSpeed, "--feed-speed", bit(Action::Stats)},
    {kPage, "--page", kPictures | bit(Action::Serve)},
    {kDpi, "--dpi", kPictures},
    {kScale, "--scale", kPictures},
    {kPins, "--pins", bit(Action::Draw) | bit(Action::Sheet)},
    {kTone, "--tone", bit(Action::Diff)},
    {kFormat, "--format", kFiles},
    {'o', "--output", kFiles},
}};

std::string nameOf(Action action) {
  constexpr std::array<const char*, 7> kNames{"a picture", "--list",        "--stats", "--diff",
                                              "--sheet",   "--calibration", "--serve"};
  return kNames.at(static_cast<size_t>(action));
}

// Some of our own pages are made for a printer's paper and options.
bool isForPrinter(const Arguments& arguments) {
  const calibration::Page* page = calibration::pageNamed(arguments.calibration);
  return arguments.action == Action::Calibration && page != nullptr && page->hasSettings;
}

// A document's pages are chosen before they are printed, whatever is shown then.
bool isUsed(const Use& use, const Arguments& arguments) {
  if (use.code == kPage && !arguments.from.empty()) return true;
  const bool isPrinter = use.code == kPpd || use.code == kAnyPpd || use.code == kOptions;
  if (isPrinter && isForPrinter(arguments)) return true;
  return (use.actions & bit(arguments.action)) != 0;
}

std::string nearestOption(const std::string& name) {
  std::vector<std::string> names;
  for (const option& known : kLong) {
    if (known.name != nullptr) names.emplace_back(known.name);
  }
  const auto nearest = nearestName(name, names);
  return nearest ? "; did you mean --" + *nearest + "?" : "";
}

}  // namespace

std::span<const option> longOptions() {
  return kLong;
}

std::optional<std::string> whatIsIdle(const std::vector<int>& given, const Arguments& arguments) {
  for (const Use& use : kUses) {
    if (isUsed(use, arguments) || std::ranges::find(given, use.code) == given.end()) continue;
    return std::string(use.name) + " does nothing with " + nameOf(arguments.action);
  }
  return std::nullopt;
}

std::string unusableOption(int code, const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  if (code == ':') return "option '" + word + "' needs a value";
  if (optopt != 0 && word.starts_with("--") && name != word) {
    return "option '" + name + "' takes no value";
  }
  if (optopt != 0 && optopt < kList && word.compare(0, 2, "--") != 0) {
    return std::string("unknown option '-") + static_cast<char>(optopt) + "'";
  }
  return "unknown or unclear option '" + word + "'" +
         (name.starts_with("--") ? nearestOption(name.substr(2)) : "");
}

}  // namespace velka::view
