// The tables of the measurements of whole jobs, each printed as it comes.
#pragma once

#include "Setup.h"

namespace velka::bench {

/// A page beyond the first, A4 at 360 x 360 dpi: every kind of page, both models, turns.
void pages(const Setup& setup);

/// Photographs beside the one that is drawn by a formula.
void photographs(const Setup& setup);

/// The kinds of pages at 180 x 180 and 360 x 180 dpi.
void resolutions(const Setup& setup);

/// Whole jobs of many pages, and of long ones.
void growth(const Setup& setup);

/// From start to the first byte.
void start(const Setup& setup);

/// Beside the filters of other printers.
void peers(const Setup& setup);

}  // namespace velka::bench
