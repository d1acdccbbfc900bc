#include "ModelGuess.h"

#include "JobEnd.h"

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
    if (colour == kBothColours) return {Model::OrloBack, "a block of both inks at once", true};
    if (colour && colourIsNew) return {Model::Standard, "a block names its own ink", true};
    if (colour) return {std::nullopt, "a block does not name its ink, though one before it does"};
    if (initialised) return {Model::OrloFront, "a block follows no choice of ink"};
    return {std::nullopt, "the start of the page is missing, so nothing tells how it was to print"};
  }
};

std::optional<ModelGuess> clueOf(const Command& command, const Clues& clues) {
  switch (command.kind) {
    case CommandKind::BitImage:
      return clues.judge();
    case CommandKind::Colour:
      if (command.value != kBothColours) return std::nullopt;
      return ModelGuess{Model::OrloBack, "both inks at once are chosen", true};
    case CommandKind::EjectMode:
      return ModelGuess{Model::Standard, "an eject mode is chosen", true};
    case CommandKind::FeedMode:
      if (command.value == 'F') return ModelGuess{Model::OrloFront, "front feed is chosen", true};
      if (command.value == 'B') return ModelGuess{Model::OrloBack, "back feed is chosen", true};
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

std::string at(size_t offset) {
  return " (offset " + std::to_string(offset) + ")";
}

// Reads until the first clue that `counts`, or to the end.
template <typename Counts>
std::optional<ModelGuess> findClue(CommandReader& reader, Counts counts) {
  Clues clues;
  while (const auto command = reader.next()) {
    auto guess = clueOf(*command, clues);
    clues.note(*command);
    if (!guess || !counts(*guess)) continue;
    guess->why += at(command->offset);
    return guess;
  }
  return std::nullopt;
}

bool readsToAJobsEnd(Bytes stream, Model model) {
  CommandReader reader(stream, model);
  JobEnd end;
  while (const auto command = reader.next()) end.note(command->kind);
  return !reader.fault() && !end.missing(stream.size());
}

ModelGuess provedFrontFeed(Bytes stream, const ModelGuess& first) {
  CommandReader reader(stream, Model::OrloFront);
  if (auto chosen = findClue(reader, [](const ModelGuess& clue) { return clue.proved; })) {
    return *chosen;
  }
  if (readsToAJobsEnd(stream, Model::OrloFront) && !readsToAJobsEnd(stream, Model::Standard)) {
    return {Model::OrloFront, first.why + " and only three bytes a column lead to the end", true};
  }
  return {std::nullopt, first.why + ", as in front feed, but that proves nothing"};
}

}  // namespace

ModelGuess guessModel(Bytes stream) {
  CommandReader start(stream, std::nullopt);
  const auto first = findClue(start, [](const ModelGuess&) { return true; });
  if (!first && start.fault()) {
    const Fault& fault = *start.fault();
    return {std::nullopt, "nothing is struck before a fault" + at(fault.offset), false, false};
  }
  if (!first) return {Model::Standard, "nothing is struck", false, false};
  if (!first->model) return *first;
  CommandReader again(stream, *first->model);
  const auto other =
      findClue(again, [&](const ModelGuess& clue) { return clue.model != first->model; });
  if (other) return {std::nullopt, first->why + ", but " + other->why};
  return first->proved ? *first : provedFrontFeed(stream, *first);
}

}  // namespace velka::decode
