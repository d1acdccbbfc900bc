// A stream of bytes to commands, one by one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "Head.h"

namespace velka::decode {

using Bytes = std::span<const uint8_t>;

enum class CommandKind : uint8_t {
  Initialise,      ///< ESC @
  LineSpacing,     ///< ESC 2
  PageLength,      ///< ESC C n: lines of 1/6 inch
  SetUnit,         ///< ESC ( U: u/3600 inch
  PaperMove,       ///< ESC ( v: signed, in units
  PaperAdvance,    ///< ESC J n: n/180 inch
  HeadTo,          ///< ESC $: from the left edge, in units
  HeadBy,          ///< ESC backslash: signed, in units
  Colour,          ///< ESC r: 0 black, 1 red, 2 both
  BitImage,        ///< ESC *: a block of columns
  EjectMode,       ///< GS 04 T p
  FeedMode,        ///< ESC EM: F front, B back
  CarriageReturn,  ///< CR
  FormFeed,        ///< FF
};

struct Command {
  CommandKind kind = CommandKind::Initialise;
  size_t offset = 0;       ///< of its first byte in the stream
  size_t size = 0;         ///< bytes, the data of a block included
  int32_t value = 0;       ///< its parameter; of a block the number of columns
  Mode mode = {};          ///< of a block
  Bytes data;              ///< of a block: columns from left to right, inside the stream
  size_t overwritten = 0;  ///< of a paper move: commands before it that it cut short
};

/// Where a stream stops to be one, and why.
struct Fault {
  size_t offset = 0;
  std::string what;
};

/// Reads commands until the stream's end or its first fault. Any bytes are safe
/// to read. The stream must stay alive; the commands' data points into it.
class CommandReader {
 public:
  /// On the Orlo head every column has three bytes, and both inks can be chosen at
  /// once. Without a model columns are the standard head's, and any colour will do.
  CommandReader(Bytes stream, std::optional<Model> model)
      : stream_(stream),
        orlo_(model && isOrlo(*model)),
        highestColour_(model == Model::Standard ? 1 : 2) {}

  /// The next command; none at the end and from the first fault on.
  std::optional<Command> next();

  /// What ended the reading, where it was not the stream's end.
  [[nodiscard]] const std::optional<Fault>& fault() const { return fault_; }

 private:
  std::optional<Command> fail(std::string what);
  std::optional<Command> longMove();
  std::optional<Command> block(Command command);
  std::optional<Command> taken(const Command& command);
  [[nodiscard]] std::string unknown() const;

  Bytes stream_;
  size_t at_ = 0;
  bool orlo_;
  int32_t highestColour_;
  std::optional<Fault> fault_;
};

}  // namespace velka::decode
