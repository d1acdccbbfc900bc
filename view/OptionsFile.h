// Files of options that this program and, through xargs, lp take.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "Arguments.h"
#include "Outcome.h"

namespace velka::view {

/// Options and their values, in the order they were stated.
using Settings = std::vector<std::pair<std::string, std::string>>;

/// One option as the print system splits them, blanks in its value marked.
[[nodiscard]] std::string optionText(const std::string& name, const std::string& value);

/// A word as a shell reads it, and xargs; quoted only where it must be.
[[nodiscard]] std::string quoted(const std::string& word);

/// The settings behind "-o" each, for a command line, with `between` after all but the last.
[[nodiscard]] std::string asArguments(const Settings& settings, std::string_view between);

struct WrongFile {
  std::string why;
};

/// The options of a file's text, as one text of a job's. It holds words as xargs splits
/// them, each option behind "-o".
[[nodiscard]] std::variant<std::string, WrongFile> readOptionsText(std::string_view text);

/// Puts what the command line's file of options holds in front of its other options.
[[nodiscard]] Problem takeOptionsFile(Arguments& arguments);

}  // namespace velka::view
