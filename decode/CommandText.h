// Commands in words.
#pragma once

#include <string>

#include "Carriage.h"
#include "CommandReader.h"

namespace velka::decode {

/// How the command is written down: "ESC ( v".
[[nodiscard]] std::string spellingOf(const Command& command);

/// What the command does, lengths in millimetres; `before` is where head and paper
/// stand when it comes.
[[nodiscard]] std::string meaningOf(const Command& command, const Carriage& before);

/// Offset, bytes, spelling and meaning in columns, without a line end.
[[nodiscard]] std::string lineOf(const Command& command, const Carriage& before);

}  // namespace velka::decode
