// Streams for people to read, where two of them differ.
#pragma once

#include <string>

#include "CommandText.h"

namespace velka::testing {

/// One command of a standard-model stream a line, and what ends it early.
inline std::string describe(decode::Bytes stream) {
  decode::CommandReader reader(stream, std::nullopt);
  decode::Carriage carriage;
  std::string text;
  while (const auto command = reader.next()) {
    text += decode::lineOf(*command, carriage) + '\n';
    carriage.apply(*command);
  }
  if (reader.fault()) text += std::to_string(reader.fault()->offset) + ": " + reader.fault()->what;
  return text;
}

/// Both, one below the other.
inline std::string differenceOf(decode::Bytes got, decode::Bytes expected) {
  return "got\n" + describe(got) + "\nexpected\n" + describe(expected);
}

}  // namespace velka::testing
