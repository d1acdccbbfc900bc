// What the program shows. Each view takes the command line, tells its troubles on
// standard error and gives the exit status.
#pragma once

#include "Arguments.h"

namespace velka::view {

/// The commands of a stream, one a line.
[[nodiscard]] int listCommands(const Arguments& arguments);

/// What a stream holds, a key and a value a line.
[[nodiscard]] int tellStats(const Arguments& arguments);

/// The pages of a stream.
[[nodiscard]] int drawPages(const Arguments& arguments);

/// What differs between two streams, as numbers and as pictures.
[[nodiscard]] int tellDifference(const Arguments& arguments);

/// One page printed with each value of an option, on one sheet.
[[nodiscard]] int drawSheet(const Arguments& arguments);

/// A page to print that tells what the printer does, as a PDF.
[[nodiscard]] int writeCalibration(const Arguments& arguments);

/// Reads the files of options that the command line names and looks all options up;
/// before anything is shown.
[[nodiscard]] int prepare(Arguments& arguments);

/// The view that the command line asks for, but for --serve.
[[nodiscard]] int show(const Arguments& arguments);

}  // namespace velka::view
