#include "Arguments.h"

#include <getopt.h>
#include <strings.h>

#include "ArgumentCheck.h"
#include "ArgumentValues.h"
#include "OptionTable.h"
#include "Version.h"

namespace velka::view {

std::variant<Arguments, Answer, UsageError> readArguments(int argc, char** argv) {
  Arguments arguments;
  optind = 0;
  opterr = 0;
  int code = 0;
  std::vector<int> given;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): before any thread
  while ((code = getopt_long(argc, argv, ":o:hV", longOptions().data(), nullptr)) != -1) {
    if (code == 'h') return Answer{helpText()};
    if (code == 'V') return Answer{velka::versionText("velkaview")};
    if (code == '?' || code == ':') return UsageError{unusableOption(code, argv[optind - 1])};
    if (auto fault = takeOption(code, optarg, arguments)) return UsageError{*fault};
    given.push_back(code);
  }
  if (arguments.by) arguments.sheet.push_back(*arguments.by);
  arguments.files.assign(argv + optind, argv + argc);
  if (auto fault = whatContradicts(arguments)) return UsageError{*fault};
  if (auto fault = whatIsIdle(given, arguments)) return UsageError{*fault};
  if (auto fault = whatHasNoFormat(arguments)) return UsageError{*fault};
  return arguments;
}

std::optional<Format> formatOfName(const std::string& name) {
  const auto endsIn = [&](const char* ending) {
    return name.size() > 4 && strcasecmp(name.c_str() + name.size() - 4, ending) == 0;
  };
  if (endsIn(".png")) return Format::Png;
  if (endsIn(".pdf")) return Format::Pdf;
  return std::nullopt;
}

Format formatOf(const Arguments& arguments) {
  if (arguments.format) return *arguments.format;
  return formatOfName(arguments.output).value_or(Format::Png);
}

}  // namespace velka::view
