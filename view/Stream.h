// The streams that a command line names, each with what is known of its printer.
#pragma once

#include <cstdint>
#include <optional>
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
  bool modelKnown = true;    ///< otherwise nothing depends on it
  bool pagesChosen = false;  ///< of a document: it holds the wanted pages and no other
  int64_t leastWidth = 0;    ///< of the paper, units; what is printed beside it widens it
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

/// Prints `pages` of a document, the bytes of the command line's, with these options;
/// all of it without pages.
[[nodiscard]] Problem printStream(const Arguments& arguments, std::span<const uint8_t> document,
                                  const std::string& options, std::optional<PageRange> pages,
                                  Stream& stream);

/// Loads a stream or prints the document, whichever the command line asks for, and
/// keeps what was printed where it says.
[[nodiscard]] Problem onlyStream(const Arguments& arguments, Stream& stream);

/// The pages of the stream that are wanted, and the number of its first.
struct PageChoice {
  PageRange range;     ///< of numbers
  uint64_t first = 1;  ///< of the stream's first page
};
[[nodiscard]] PageChoice choiceOf(const Arguments& arguments, const Stream& stream);

/// Reads a stream's pages once, up to its first fault; what those beside `wanted` hold
/// must not change how those are drawn.
[[nodiscard]] Survey survey(const Stream& stream, const PageChoice& wanted);

/// "NAME: offset N: WHAT".
[[nodiscard]] std::string faultText(const Stream& stream, const decode::Fault& fault);

}  // namespace velka::view
