#include "ModelGuess.h"

namespace velka::decode {
namespace {

constexpr int32_t kBothColours = 2;

// What the commands before a block tell about who sent it.
struct Clues {
  bool initialised = false;  // the page's start was seen, so nothing before it is missing
  std::optional<int32_t> colour;
  bool colourIsNew = false;  // selected by the command right before

  void note(const Command& command) {
    colourIsNew = command.kind == CommandKind::Colour;
    if (colourIsNew) colour = command.value;
    if (command.kind == CommandKind::Initialise) {
      initialised = true;
      colour.reset();
    }
  }

  [[nodiscard]] ModelGuess judge() const {
    if (colour == kBothColours) return {Model::OrloBack, "both inks at once are selected"};
    if (colour && colourIsNew) return {Model::Standard, "a block names its own ink"};
    if (colour) return {std::nullopt, "a block does not name its ink, though one before it does"};
    if (initialised) return {Model::OrloFront, "a block follows no choice of ink"};
    return {std::nullopt, "the start of the page is missing, so nothing tells how it was to print"};
  }
};

std::optional<ModelGuess> clueOf(const Command& command, const Clues& clues) {
  switch (command.kind) {
    case CommandKind::BitImage:
      return clues.judge();
    case CommandKind::EjectMode:
      return ModelGuess{Model::Standard, "an eject mode is chosen"};
    case CommandKind::FeedMode:
      if (command.value == 'F') return ModelGuess{Model::OrloFront, "front feed is chosen"};
      if (command.value == 'B') return ModelGuess{Model::OrloBack, "back feed is chosen"};
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

std::string at(size_t offset) {
  return " (offset " + std::to_string(offset) + ")";
}

// Reads until the first clue, or to the end for a clue that contradicts `first`.
std::optional<ModelGuess> findClue(Bytes stream, const std::optional<Model>& first) {
  CommandReader reader(stream, first && isOrlo(*first));
  Clues clues;
  while (const auto command = reader.next()) {
    auto guess = clueOf(*command, clues);
    clues.note(*command);
    if (!guess || (first && guess->model == first)) continue;
    guess->why += at(command->offset);
    return guess;
  }
  return std::nullopt;
}

}  // namespace

ModelGuess guessModel(Bytes stream) {
  auto first = findClue(stream, std::nullopt);
  if (!first) return {Model::Standard, "nothing is struck"};
  if (!first->model) return *first;
  const auto other = findClue(stream, first->model);
  if (!other) return *first;
  return {std::nullopt, first->why + ", but " + other->why};
}

}  // namespace velka::decode
