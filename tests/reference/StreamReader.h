// Reads a standard-model command stream back: an independent decoder that knows
// the command set alone. It accepts any bytes and stops at the first that begin
// no whole command.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velka::reference {

enum class CommandKind {
  Initialise,          ///< ESC @
  LineSpacing,         ///< ESC 2
  PageLength,          ///< ESC C n
  SetUnit,             ///< ESC ( U
  VerticalMove,        ///< ESC ( v
  HorizontalAbsolute,  ///< ESC $
  HorizontalRelative,  ///< ESC backslash
  SelectColour,        ///< ESC r
  BitImage,            ///< ESC *
  EjectMode,           ///< GS 04 T p
  CarriageReturn,      ///< CR
  FormFeed,            ///< FF
};

/// A short name for messages.
std::string nameOf(CommandKind kind);

struct StreamCommand {
  CommandKind kind;
  size_t offset;  ///< of its first byte
  size_t length;  ///< bytes
  int value;      ///< its parameter, moves signed; of ESC * the number of columns
  int mode;       ///< of ESC * the bit-image mode, else 0
};

struct StreamBlock {
  int colour;  ///< 0 black, 1 red
  int64_t y;   ///< 1/360 inch from the top of the form
  int64_t x;   ///< 1/60 inch from the left
  int mode;    ///< bit-image mode
  int columns;
  int bytesPerColumn;
  std::vector<uint8_t> data;
  size_t offset;  ///< of its ESC *
  size_t dots;
};

struct StreamPage {
  std::vector<StreamBlock> blocks;
  std::array<size_t, 2> dots{};  ///< black, red
  bool ended = false;            ///< a form feed closed it
};

struct StreamContents {
  std::vector<StreamCommand> commands;
  std::vector<StreamPage> pages;  ///< one a form feed, and what printed after the last
  std::array<size_t, 2> dots{};   ///< black, red
  std::optional<size_t> malformedAt;
};

StreamContents readStream(const std::vector<uint8_t>& bytes);

/// One command a line, for a difference that a person has to read.
std::string describe(const StreamContents& contents);

}  // namespace velka::reference
