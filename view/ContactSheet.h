// Several pictures on one sheet.
#pragma once

#include <string>
#include <vector>

#include "Picture.h"

namespace velka::view {

struct Labelled {
  std::string label;
  Picture picture;
};

/// Pictures of one resolution side by side, up to four in a row, each framed and with
/// its label above.
[[nodiscard]] Drawing contactSheet(std::vector<Labelled> pictures);

}  // namespace velka::view
