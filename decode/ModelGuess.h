// Which model a stream was made for, where the stream itself proves it.
#pragma once

#include <optional>
#include <string>

#include "CommandReader.h"
#include "Head.h"

namespace velka::decode {

struct ModelGuess {
  std::optional<Model> model;  ///< none: the stream does not say
  std::string why;             ///< what proves it, or what is unclear, with its offset
};

/// The standard model names the ink of every block right before it. The Orlo head
/// prints both inks at once: in back feed a page says so first (colour 2), in front
/// feed no page says anything. A stream that strikes nothing looks the same on
/// every model and counts as the standard one.
[[nodiscard]] ModelGuess guessModel(Bytes stream);

}  // namespace velka::decode
