// A printer in a hundred lines: what a stream strikes on paper, read literally. Paper
// moves add up, a block strikes the columns that it counts, a form feed goes to the top
// of the next form. Shares nothing with the encoders nor with the decoder.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

namespace velka::exacttest {

/// Ink (0 black, 1 red), rows down and columns across in 1/3600 inch.
using Spot = std::tuple<int, int64_t, int64_t>;

struct PrintedPage {
  std::map<Spot, int> struck;  ///< how often
  int formLines = 0;           ///< what ESC C said, 0 where nothing did
  int64_t farthest = 0;        ///< the paper's lowest stand, 1/3600 inch
  int64_t lastStand = 0;       ///< at the form feed
  int moves = 0;               ///< of the paper
  int movesBack = 0;           ///< of one command or more
  int passes = 0;              ///< of the head: blocks of one ink between moves count once
  size_t bytes = 0;
};

struct PrintedJob {
  std::vector<PrintedPage> pages;    ///< what form feeds end
  bool rest = false;                 ///< something was struck behind the last one
  std::optional<std::string> fault;  ///< why the stream could not be read to its end
};

/// Which dots a column's bits are.
enum class Pins { Standard, OrloFront, OrloBack };

PrintedJob printOut(std::span<const uint8_t> stream, Pins pins);

/// Takes what a page, counted from 0, is struck by.
using OnStrike = std::function<void(size_t page, const Spot& spot)>;
/// The same for pages of millions of dots: these go to `strike` and to no `struck`.
PrintedJob printOut(std::span<const uint8_t> stream, Pins pins, const OnStrike& strike);

}  // namespace velka::exacttest
