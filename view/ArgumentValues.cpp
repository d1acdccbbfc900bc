#include "ArgumentValues.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include "OptionTable.h"
#include "Pages.h"
#include "SheetValues.h"

namespace velka::view {
namespace {

using Fault = std::optional<std::string>;

struct Range {
  double low;
  double high;
  const char* text;
};

constexpr Range kDpiRange{1, 7200, "a number from 1 to 7200"};
constexpr Range kScaleRange{0.001, 100, "a number from 0.001 to 100"};
constexpr Range kWidthRange{1, 5000, "millimetres from 1 to 5000"};
constexpr uint16_t kLeastPort = 1024;
constexpr Range kSpeedRange{0.001, 1e6, "millimetres a second from 0.001 to 1000000"};

Fault invalid(const std::string& name, const std::string& text, const std::string& allowed) {
  return "invalid value '" + text + "' for --" + name + ": it takes " + allowed;
}

template <typename Number>
bool readNumber(const char* text, Number& number) {
  const char* end = text + std::strlen(text);
  const auto [stop, error] = std::from_chars(text, end, number);
  return error == std::errc() && stop == end;
}

template <typename Target>
Fault readWithin(const char* name, const Range& range, const char* text, Target& target) {
  double number = 0;
  if (!readNumber(text, number) || !(number >= range.low && number <= range.high)) {
    return invalid(name, text, range.text);
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
  if (!sound || range.first < 1 || range.last < range.first) {
    return invalid("page", text, "N, N-M, N- or -M, pages from 1");
  }
  pages = range;
  return std::nullopt;
}

Fault readModel(const char* text, std::optional<decode::Model>& model) {
  model = decode::modelNamed(text);
  return model ? std::nullopt : invalid("model", text, "standard, orlo-front or orlo-back");
}

Fault readFormat(const std::string& text, std::optional<Format>& format) {
  if (text == "png") format = Format::Png;
  if (text == "pdf") format = Format::Pdf;
  return text == "png" || text == "pdf" ? std::nullopt : invalid("format", text, "png or pdf");
}

// Ports below are the system's.
Fault readPort(const char* text, uint16_t& port) {
  const bool sound = readNumber(text, port) && port >= kLeastPort;
  return sound ? std::nullopt : invalid("port", text, "a number from 1024 to 65535");
}

Fault setAction(Arguments& arguments, Action action) {
  if (arguments.action != Action::Draw && arguments.action != action) {
    return "only one of --list, --stats, --diff, --sheet, --calibration and --serve can be given";
  }
  arguments.action = action;
  return std::nullopt;
}

Fault takeSheet(const char* text, Arguments& arguments) {
  auto option = readSheetOption(text);
  if (!option) return invalid("sheet", text, "NAME=A,B,... or NAME=FROM..TO/STEP");
  arguments.sheet.push_back(std::move(*option));
  return setAction(arguments, Action::Sheet);
}

Fault takeBy(const char* text, Arguments& arguments) {
  if (arguments.by) return "--by can be given once";
  arguments.by = readSheetOption(text);
  if (!arguments.by) return invalid("by", text, "NAME=A,B,... or NAME=FROM..TO/STEP");
  return std::nullopt;
}

Fault takeCalibration(const std::string& name, Arguments& arguments) {
  if (calibration::pageNamed(name) == nullptr) {
    return invalid("calibration", name, calibration::pageNames());
  }
  arguments.calibration = name;
  return setAction(arguments, Action::Calibration);
}

Fault takeNumber(int code, const char* text, Arguments& arguments) {
  switch (code) {
    case kWidth:
      return readWithin("width", kWidthRange, text, arguments.width);
    case kHeadSpeed:
      return readWithin("head-speed", kSpeedRange, text, arguments.speeds.head);
    case kFeedSpeed:
      return readWithin("feed-speed", kSpeedRange, text, arguments.speeds.feed);
    case kScale:
      return readWithin("scale", kScaleRange, text, arguments.scale);
    default:
      return readWithin("dpi", kDpiRange, text, arguments.dpi);
  }
}

void takeSwitch(int code, Arguments& arguments) {
  (code == kPins     ? arguments.pins
   : code == kTone   ? arguments.tone
   : code == kAnyPpd ? arguments.anyPpd
   : code == kOpen   ? arguments.open
                     : arguments.progress) = true;
}

Fault takeText(int code, const char* text, Arguments& arguments) {
  std::string& target = code == kFrom          ? arguments.from
                        : code == kPpd         ? arguments.ppd
                        : code == kOptions     ? arguments.options
                        : code == kOptionsFile ? arguments.optionsFile
                        : code == kSave        ? arguments.save
                                               : arguments.output;
  target = text;
  if (target.empty() && code != kOptions) return "an option's file has an empty name";
  return std::nullopt;
}

}  // namespace

Fault takeOption(int code, const char* text, Arguments& arguments) {
  switch (code) {
    case kList:
      return setAction(arguments, Action::List);
    case kStats:
      return setAction(arguments, Action::Stats);
    case kDiff:
      return setAction(arguments, Action::Diff);
    case kSheet:
      return takeSheet(text, arguments);
    case kBy:
      return takeBy(text, arguments);
    case kServe:
      return setAction(arguments, Action::Serve);
    case kPort:
      return readPort(text, arguments.port);
    case kCalibration:
      return takeCalibration(text, arguments);
    case kModel:
      return readModel(text, arguments.model);
    case kPage:
      return readPages(text, arguments.pages);
    case kFormat:
      return readFormat(text, arguments.format);
    case kWidth:
    case kHeadSpeed:
    case kFeedSpeed:
    case kDpi:
    case kScale:
      return takeNumber(code, text, arguments);
    case kPins:
    case kTone:
    case kAnyPpd:
    case kOpen:
    case kProgress:
      takeSwitch(code, arguments);
      return std::nullopt;
    default:
      return takeText(code, text, arguments);
  }
}

}  // namespace velka::view
