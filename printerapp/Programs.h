// Where the programs are that a job needs.
#pragma once

#include <string>

namespace velka::app {

/// The printing filter: beside this program, in the build tree, where an installation with
/// a prefix of its own has put it, or where the print system keeps its filters. Empty where
/// it is in none of these.
[[nodiscard]] std::string findFilter();

/// This program itself, for parts of a job that are run as processes of their own.
[[nodiscard]] std::string ownProgram();

}  // namespace velka::app
