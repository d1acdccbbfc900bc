// The streams that a command line names, each with what is known of its printer.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Arguments.h"
#include "DotGrid.h"
#include "Outcome.h"

namespace velka::view {

struct Stream {
  std::string name;  ///< for messages
  std::string stem;  ///< of the names of its pictures
  std::vector<uint8_t> bytes;
  decode::Model model = decode::Model::Standard;
  bool modelKnown = true;  ///< otherwise nothing depends on it
  int64_t leastWidth = 0;  ///< of the paper, units; what is printed beside it widens it
};

/// What a first reading finds out.
struct Survey {
  decode::Grid grid;  ///< of the pages that are wanted
  uint64_t pages = 0;
};

/// What the pictures of that input are called: "-" is standard input.
[[nodiscard]] std::string stemOf(const std::string& name);

/// Width of the paper where nobody states it: A4, units.
[[nodiscard]] int64_t usualWidth();

/// Reads the file at `index` of the command line.
[[nodiscard]] Problem loadStream(const Arguments& arguments, size_t index, Stream& stream);

/// Prints `pdf`, the bytes of the command line's PDF, with these options.
[[nodiscard]] Problem printStream(const Arguments& arguments, std::span<const uint8_t> pdf,
                                  const std::string& options, Stream& stream);

/// Loads a stream or prints the PDF, whichever the command line asks for.
[[nodiscard]] Problem onlyStream(const Arguments& arguments, Stream& stream);

/// Reads a stream's pages once, up to its first fault; what those beside `wanted` hold
/// must not change how those are drawn.
[[nodiscard]] Survey survey(const Stream& stream, const PageRange& wanted);

/// "NAME: offset N: WHAT".
[[nodiscard]] std::string faultText(const Stream& stream, const decode::Fault& fault);

}  // namespace velka::view
