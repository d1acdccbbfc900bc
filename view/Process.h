// One program, run to its end.
#pragma once

#include <csignal>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "Files.h"
#include "Outcome.h"

namespace velka::view {

struct Step {
  std::string program;                 ///< with its folder; no shell comes near it
  std::vector<std::string> arguments;  ///< after the program's name
  std::vector<std::pair<std::string, std::string>> environment;  ///< beside our own
  std::string input;                                             ///< file for standard input
  std::string output;  ///< files for standard output and standard error, made anew
  std::string errors;
  bool mayBeSilent = false;  ///< whether an empty output is none of its failures
  /// Asked again and again while the program runs: whether nobody wants it any more.
  std::function<bool()> unwanted = {};
  int ending = SIGTERM;  ///< what ends it then, and all that it started
};

/// Runs a program and waits for it. What is wrong names the program and ends with its
/// last words on standard error. A signal that `held` keeps back ends the program
/// and what it started, too, and takes effect on us when `held` goes. What `held` keeps
/// back must have been so before any other thread began.
[[nodiscard]] Problem runStep(const Step& step, const SignalsHeld& held);

}  // namespace velka::view
