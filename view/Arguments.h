// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Head.h"
#include "StreamStats.h"

namespace velka::view {

enum class Action : uint8_t { Draw, List, Stats, Diff, Sheet, Calibration, Serve };
enum class Format : uint8_t { Png, Pdf };

/// Pages from 1, both ends included.
struct PageRange {
  uint64_t first = 1;
  uint64_t last = UINT64_MAX;

  [[nodiscard]] bool holds(uint64_t page) const { return page >= first && page <= last; }
};

/// An option of the job and the values to compare.
struct SheetOption {
  std::string name;
  std::vector<std::string> values;
};

struct Arguments {
  Action action = Action::Draw;
  std::vector<std::string> files;  ///< "-" is standard input; none with `from`
  std::string from;                ///< a document to print first; empty: none
  std::string save;                ///< where to keep its stream; empty: nowhere
  std::string ppd;
  bool anyPpd = false;  ///< another maker's will do, too
  std::string options;
  std::string optionsFile;         ///< a file of more options; empty: none
  std::vector<SheetOption> sheet;  ///< one, or two that make a grid
  std::optional<SheetOption> by;   ///< the second of them, stated by a word of its own
  std::string calibration;         ///< the page to write, of those that there are
  std::optional<decode::Model> model;
  std::optional<double> scale;
  std::optional<double> dpi;
  std::optional<double> width;  ///< millimetres
  std::optional<PageRange> pages;
  std::optional<Format> format;
  std::string output;  ///< "-" is standard output; empty: named after the input
  bool pins = false;
  bool tone = false;      ///< of --diff: means, not dots
  bool progress = false;  ///< tell how far it is, also where nobody looks
  decode::Speeds speeds;
  uint16_t port = 0;  ///< of --serve; 0: any that is free
  bool open = false;  ///< show the page of --serve in the user's browser
};

/// A line asked for with --help or --version, to be printed and done with.
struct Answer {
  std::string text;
};

/// What is wrong with the command line.
struct UsageError {
  std::string text;
};

/// Reads the arguments that main() was given.
[[nodiscard]] std::variant<Arguments, Answer, UsageError> readArguments(int argc, char** argv);

/// What --help prints, and --version.
[[nodiscard]] std::string helpText();

/// The format that a file's name decides.
[[nodiscard]] std::optional<Format> formatOfName(const std::string& name);

/// PNG or PDF: as stated, else by the output's name.
[[nodiscard]] Format formatOf(const Arguments& arguments);

}  // namespace velka::view
