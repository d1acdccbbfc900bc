#include "Arguments.h"

#include <getopt.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include "ArgumentCheck.h"

namespace velka::view {
namespace {

enum Long : int {
  kList = 256,
  kStats,
  kDiff,
  kFrom,
  kSheet,
  kPpd,
  kOptions,
  kModel,
  kWidth,
  kHeadSpeed,
  kFeedSpeed,
  kPage,
  kDpi,
  kScale,
  kPins,
  kFormat,
};

constexpr std::array<option, 20> kLong{{
    {"list", no_argument, nullptr, kList},
    {"stats", no_argument, nullptr, kStats},
    {"diff", no_argument, nullptr, kDiff},
    {"from", required_argument, nullptr, kFrom},
    {"sheet", required_argument, nullptr, kSheet},
    {"ppd", required_argument, nullptr, kPpd},
    {"options", required_argument, nullptr, kOptions},
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
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, 'V'},
    {nullptr, 0, nullptr, 0},
}};

using Fault = std::optional<std::string>;

constexpr unsigned bit(Action action) {
  return 1U << static_cast<unsigned>(action);
}

constexpr unsigned kPictures = bit(Action::Draw) | bit(Action::Diff) | bit(Action::Sheet);

// Options that do nothing with some actions.
struct Use {
  int code;
  const char* name;
  unsigned actions;
};

constexpr std::array<Use, 9> kUses{{
    {kWidth, "--width", kPictures | bit(Action::Stats)},
    {kHeadSpeed, "--head-speed", bit(Action::Stats)},
    {kFeedSpeed, "--feed-speed", bit(Action::Stats)},
    {kPage, "--page", kPictures},
    {kDpi, "--dpi", kPictures},
    {kScale, "--scale", kPictures},
    {kPins, "--pins", bit(Action::Draw) | bit(Action::Sheet)},
    {kFormat, "--format", kPictures},
    {'o', "--output", kPictures},
}};

std::string nameOf(Action action) {
  constexpr std::array<const char*, 5> kNames{"a picture", "--list", "--stats", "--diff",
                                              "--sheet"};
  return kNames.at(static_cast<size_t>(action));
}

// What is given and would be passed over in silence.
Fault findIdle(const std::vector<int>& given, Action action) {
  for (const Use& use : kUses) {
    if ((use.actions & bit(action)) != 0 || std::ranges::find(given, use.code) == given.end()) {
      continue;
    }
    return std::string(use.name) + " does nothing with " + nameOf(action);
  }
  return std::nullopt;
}

struct Range {
  double low;
  double high;
};

constexpr Range kDpiRange{1, 7200};
constexpr Range kScaleRange{0.001, 100};
constexpr Range kWidthRange{1, 5000};
constexpr Range kSpeedRange{0.001, 1e6};

Fault invalid(const std::string& name, const char* text) {
  return "invalid value '" + std::string(text) + "' for --" + name;
}

template <typename Number>
bool readNumber(const char* text, Number& number) {
  const char* end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, number);
  return error == std::errc() && stop == end;
}

template <typename Target>
Fault readWithin(const char* name, Range range, const char* text, Target& target) {
  double number = 0;
  if (!readNumber(text, number) || !(number >= range.low && number <= range.high)) {
    return invalid(name, text);
  }
  target = number;
  return std::nullopt;
}

// N, N-M, N- or -M.
Fault readPages(const char* text, std::optional<PageRange>& pages) {
  const std::string all = text;
  const size_t dash = all.find('-');
  const std::string first = all.substr(0, dash);
  const std::string last = dash == std::string::npos ? first : all.substr(dash + 1);
  PageRange range;
  const bool sound = (first.empty() || readNumber(first.c_str(), range.first)) &&
                     (last.empty() || readNumber(last.c_str(), range.last)) &&
                     !(first.empty() && last.empty());
  if (!sound || range.first < 1 || range.last < range.first) return invalid("page", text);
  pages = range;
  return std::nullopt;
}

Fault readModel(const char* text, std::optional<decode::Model>& model) {
  model = decode::modelNamed(text);
  return model ? std::nullopt : invalid("model", text);
}

Fault readFormat(const std::string& text, std::optional<Format>& format) {
  if (text == "png") format = Format::Png;
  if (text == "pdf") format = Format::Pdf;
  return text == "png" || text == "pdf" ? std::nullopt : invalid("format", text.c_str());
}

Fault readSheet(const char* text, Arguments& arguments) {
  const std::string all = text;
  const size_t equals = all.find('=');
  if (equals == std::string::npos || equals == 0) return invalid("sheet", text);
  arguments.sheetOption = all.substr(0, equals);
  arguments.sheetValues.clear();
  size_t at = equals;
  while (at != std::string::npos) {
    const size_t comma = all.find(',', at + 1);
    arguments.sheetValues.push_back(all.substr(at + 1, comma - at - 1));
    if (arguments.sheetValues.back().empty()) return invalid("sheet", text);
    at = comma;
  }
  return std::nullopt;
}

Fault setAction(Arguments& arguments, Action action) {
  if (arguments.action != Action::Draw && arguments.action != action) {
    return "only one of --list, --stats, --diff and --sheet can be given";
  }
  arguments.action = action;
  return std::nullopt;
}

Fault takeAction(int code, Arguments& arguments) {
  switch (code) {
    case kList:
      return setAction(arguments, Action::List);
    case kStats:
      return setAction(arguments, Action::Stats);
    case kDiff:
      return setAction(arguments, Action::Diff);
    default:
      if (auto fault = readSheet(optarg, arguments)) return fault;
      return setAction(arguments, Action::Sheet);
  }
}

Fault takeText(int code, Arguments& arguments) {
  std::string& target = code == kFrom      ? arguments.from
                        : code == kPpd     ? arguments.ppd
                        : code == kOptions ? arguments.options
                                           : arguments.output;
  target = optarg;
  if (target.empty() && code != kOptions) return "an option's file has an empty name";
  return std::nullopt;
}

Fault takeOption(int code, Arguments& arguments) {
  switch (code) {
    case kModel:
      return readModel(optarg, arguments.model);
    case kWidth:
      return readWithin("width", kWidthRange, optarg, arguments.width);
    case kHeadSpeed:
      return readWithin("head-speed", kSpeedRange, optarg, arguments.speeds.head);
    case kFeedSpeed:
      return readWithin("feed-speed", kSpeedRange, optarg, arguments.speeds.feed);
    case kPage:
      return readPages(optarg, arguments.pages);
    case kDpi:
      return readWithin("dpi", kDpiRange, optarg, arguments.dpi);
    case kScale:
      return readWithin("scale", kScaleRange, optarg, arguments.scale);
    case kFormat:
      return readFormat(optarg, arguments.format);
    case kPins:
      arguments.pins = true;
      return std::nullopt;
    case kList:
    case kStats:
    case kDiff:
    case kSheet:
      return takeAction(code, arguments);
    default:
      return takeText(code, arguments);
  }
}

// What getopt_long() could not use.
UsageError unusable(int code, char** argv) {
  const std::string argument = argv[optind - 1];
  if (code == ':') return {"option '" + argument + "' needs a value"};
  if (optopt != 0 && argument.starts_with("--") && argument.find('=') != std::string::npos) {
    return {"option '" + argument.substr(0, argument.find('=')) + "' takes no value"};
  }
  if (optopt != 0 && optopt < kList && argument.compare(0, 2, "--") != 0) {
    return {std::string("unknown option '-") + static_cast<char>(optopt) + "'"};
  }
  return {"unknown or unclear option '" + argument + "'"};
}

}  // namespace

std::variant<Arguments, Answer, UsageError> readArguments(int argc, char** argv) {
  Arguments arguments;
  optind = 0;
  opterr = 0;
  int code = 0;
  std::vector<int> given;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): before any thread
  while ((code = getopt_long(argc, argv, ":o:hV", kLong.data(), nullptr)) != -1) {
    if (code == 'h') return Answer{helpText()};
    if (code == 'V') return Answer{versionText()};
    if (code == '?' || code == ':') return unusable(code, argv);
    if (auto fault = takeOption(code, arguments)) return UsageError{*fault};
    given.push_back(code);
  }
  arguments.files.assign(argv + optind, argv + argc);
  if (auto fault = whatContradicts(arguments)) return UsageError{*fault};
  if (auto fault = findIdle(given, arguments.action)) return UsageError{*fault};
  return arguments;
}

Format formatOf(const Arguments& arguments) {
  if (arguments.format) return *arguments.format;
  return arguments.output.ends_with(".pdf") ? Format::Pdf : Format::Png;
}

}  // namespace velka::view
