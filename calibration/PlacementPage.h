// The page that tells how a printer reads the standard model's stream.
#pragma once

#include "DotDrawing.h"

namespace velka::calibration {

/// A page of the PPDs' paper 80x200mm with three fields, each read as A or B. Printed at
/// 180 x 180 dpi by the standard model with DotPlacement 0, each reads B on a printer that
/// adds up the moves of the paper and prints the columns that a block counts, and A on one
/// that does not; with DotPlacement 1 it is the other way round. The reach of heads on
/// rolls of 80 mm is enough, whether they count columns from the paper's edge or from
/// their own first.
[[nodiscard]] DotDrawing placementPage();

}  // namespace velka::calibration
