// Which model a stream was made for, where the stream itself proves it.
#pragma once

#include <optional>
#include <string>

#include "CommandReader.h"
#include "Head.h"

namespace velka::decode {

struct ModelGuess {
  std::optional<Model> model;  ///< none: the stream does not say
  std::string why;             ///< what tells it, or what is unclear, with its offset
  bool proved = false;         ///< whether a stream of another model cannot look like this
  bool matters = true;         ///< false: nothing is struck, so every model reads it alike
};

/// The standard model names the ink of every block right before it. The Orlo head
/// prints both inks at once: in back feed a page says so first (colour 2). In front
/// feed no page says anything, which proves nothing: any printer has an ink to start
/// with. Front feed is proved by the command that chooses it, or where the stream
/// reads to its job's end with three bytes in every column and in no other way. A
/// stream that strikes nothing looks the same on every model and counts as the
/// standard one, without proof.
[[nodiscard]] ModelGuess guessModel(Bytes stream);

}  // namespace velka::decode
