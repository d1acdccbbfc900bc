#include "ArgumentCheck.h"

namespace velka::view {
namespace {

using Fault = std::optional<std::string>;

// A page of our own has no input.
Fault checkAlone(const Arguments& arguments) {
  if (!arguments.from.empty()) return "--calibration writes a page of its own, without --from";
  if (!arguments.files.empty()) return "unexpected argument '" + arguments.files[0] + "'";
  return std::nullopt;
}

// A document, or none: there is a page of our own then.
Fault checkServed(const Arguments& arguments) {
  if (!arguments.from.empty()) return "--serve takes the document's name itself, without --from";
  if (arguments.ppd.empty()) return "--serve needs --ppd";
  if (arguments.files.size() > 1) return "unexpected argument '" + arguments.files[1] + "'";
  if (arguments.pages && arguments.pages->first != arguments.pages->last) {
    return "--serve shows one page at a time, so --page takes one number";
  }
  return std::nullopt;
}

Fault checkFiles(const Arguments& arguments) {
  if (arguments.action == Action::Calibration) return checkAlone(arguments);
  if (arguments.action == Action::Serve) return checkServed(arguments);
  const bool sheet = arguments.action == Action::Sheet;
  const bool diff = arguments.action == Action::Diff;
  if (!arguments.from.empty()) {
    if (arguments.ppd.empty()) return "--from needs --ppd";
    if (diff) return "--diff compares two streams and goes without --from";
    if (!arguments.files.empty()) return "unexpected argument '" + arguments.files[0] + "'";
    return std::nullopt;
  }
  if (sheet) return "--sheet needs --from";
  const size_t wanted = diff ? 2 : 1;
  if (arguments.files.size() < wanted) return diff ? "--diff needs two files" : "no file named";
  if (arguments.files.size() > wanted) {
    return "unexpected argument '" + arguments.files[wanted] + "'";
  }
  if (diff && arguments.files[0] == "-" && arguments.files[1] == "-") {
    return "standard input can be only one of the two files";
  }
  return std::nullopt;
}

bool isPicture(const Arguments& arguments) {
  return arguments.action != Action::List && arguments.action != Action::Stats;
}

Fault checkOutput(const Arguments& arguments) {
  const auto named = formatOfName(arguments.output);
  if (arguments.format && named && *named != *arguments.format) {
    return "the name " + arguments.output + " contradicts --format";
  }
  const bool png = arguments.format == Format::Png || named == Format::Png;
  if (arguments.action == Action::Calibration && png) return "--calibration writes a PDF";
  return std::nullopt;
}

Fault checkSave(const Arguments& arguments) {
  if (arguments.save.empty()) return std::nullopt;
  if (arguments.from.empty()) return "--save needs --from";
  if (arguments.action == Action::Sheet) return "--save keeps one stream; --sheet makes several";
  const bool taken = !isPicture(arguments) || arguments.output == "-";
  if (arguments.save == "-" && taken) return "standard output can be only one of the two outputs";
  return std::nullopt;
}

Fault checkSheet(const Arguments& arguments) {
  if (arguments.action != Action::Sheet) return std::nullopt;
  constexpr size_t kMostVariants = 1024;
  if (arguments.sheet.size() > 2)
    return "--sheet can be given once, or with --by (or twice) for a grid";
  size_t variants = 1;
  for (const SheetOption& option : arguments.sheet) variants *= option.values.size();
  if (variants > kMostVariants) {
    return std::to_string(variants) + " variants are more than one sheet shows (" +
           std::to_string(kMostVariants) + ")";
  }
  if (arguments.sheet.size() == 2 && arguments.sheet[0].name == arguments.sheet[1].name) {
    return "the two options of --sheet must differ";
  }
  if (arguments.pages && arguments.pages->first != arguments.pages->last) {
    return "--sheet shows one page, so --page takes one number";
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> whatContradicts(const Arguments& arguments) {
  if (auto fault = checkFiles(arguments)) return fault;
  if (arguments.dpi && arguments.scale) return "--dpi and --scale exclude each other";
  if (!arguments.options.empty() && arguments.ppd.empty()) return "--options needs --ppd";
  if (!arguments.optionsFile.empty() && arguments.ppd.empty()) return "--options-file needs --ppd";
  if (arguments.anyPpd && arguments.ppd.empty()) return "--any-ppd needs --ppd";
  if (auto fault = checkSheet(arguments)) return fault;
  if (auto fault = checkSave(arguments)) return fault;
  return checkOutput(arguments);
}

std::optional<std::string> whatHasNoFormat(const Arguments& arguments) {
  const std::string& output = arguments.output;
  if (output.empty() || output == "-" || arguments.format || formatOfName(output)) {
    return std::nullopt;
  }
  return "the name " + output + " decides no format: end it in .png or .pdf, or state --format";
}

}  // namespace velka::view
