// How far a long run is, for whoever waits for it: told on standard error, on a
// terminal in one line that goes again, elsewhere only where that is asked for.
#pragma once

#include <string>

namespace velka::view {

/// Whether to tell it where no terminal is, too, a line each time.
void askForProgress(bool wanted);

/// What is done from now on, and a step within it.
void tellProgress(const std::string& what);
void tellStep(const std::string& step);

/// Takes the line away, so that other texts have one of their own.
void clearProgress();

}  // namespace velka::view
