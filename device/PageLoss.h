// What becomes of a page when memory runs out.
#pragma once

#include <cstdint>

namespace velka {

/// What memory that ran out took from a page, and what it was wanted for.
enum class PageLoss : uint8_t {
  None,
  Generator,  ///< all of it, for the command generator
  Output,     ///< all of it, for the output bitmap
  Turn,       ///< its turn; it is printed upright
  Planes,     ///< all of it, for the ink planes
  Bands,      ///< all of it, for the list of its bands
  Commands,   ///< all of it, for its commands
  Rest,       ///< what follows the commands that were sent already
  Copies,     ///< its copies
};

/// What the log says of a loss, behind the page's number.
[[nodiscard]] constexpr const char* textOf(PageLoss loss) noexcept {
  switch (loss) {
    case PageLoss::None:
      break;
    case PageLoss::Generator:
      return "is not printed: no memory for the command generator";
    case PageLoss::Output:
      return "is not printed: no memory for its output bitmap";
    case PageLoss::Turn:
      return "is printed unturned: no memory for its turned bitmap";
    case PageLoss::Planes:
      return "is not printed: no memory for its ink planes";
    case PageLoss::Bands:
      return "is not printed: no memory for its bands";
    case PageLoss::Commands:
      return "is not printed: no memory for its commands";
    case PageLoss::Rest:
      return "is not printed to its end: no memory for its commands";
    case PageLoss::Copies:
      return "is printed only once: no memory for its copies";
  }
  return "";
}

}  // namespace velka
