#include "ArgumentCheck.h"

namespace velka::view {
namespace {

using Fault = std::optional<std::string>;

Fault checkFiles(const Arguments& arguments) {
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

Fault checkOutput(const Arguments& arguments) {
  const std::string& output = arguments.output;
  const bool otherPng = output.ends_with(".png") && arguments.format == Format::Pdf;
  const bool otherPdf = output.ends_with(".pdf") && arguments.format == Format::Png;
  if (otherPng || otherPdf) return "the name " + output + " contradicts --format";
  return std::nullopt;
}

}  // namespace

std::optional<std::string> whatContradicts(const Arguments& arguments) {
  if (auto fault = checkFiles(arguments)) return fault;
  if (arguments.dpi && arguments.scale) return "--dpi and --scale exclude each other";
  if (!arguments.options.empty() && arguments.ppd.empty()) return "--options needs --ppd";
  if (arguments.action == Action::Sheet && arguments.pages &&
      arguments.pages->first != arguments.pages->last) {
    return "--sheet shows one page, so --page takes one number";
  }
  return checkOutput(arguments);
}

}  // namespace velka::view
