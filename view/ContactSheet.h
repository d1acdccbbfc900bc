// Several pictures on one sheet.
#pragma once

#include <string>
#include <vector>

#include "Outcome.h"
#include "Picture.h"

namespace velka::view {

struct Labelled {
  std::string label;
  Picture picture;
  std::vector<std::string> notes = {};  ///< lines below the label, in smaller letters
};

/// What stands above all pictures, and how many stand in a row; 0: up to four.
struct SheetHead {
  std::vector<std::string> lines;
  size_t columns = 0;
};

/// Pictures of one resolution side by side, each framed and with its label and notes
/// above. No text is cut: what is too long for its picture is broken between words, and
/// a word too long for that makes room for itself.
[[nodiscard]] Drawing contactSheet(std::vector<Labelled> pictures, const SheetHead& head = {});

/// What would be wrong with a sheet of `count` pictures like this one.
[[nodiscard]] Problem tooLargeASheet(const Labelled& picture, size_t count, const SheetHead& head);

}  // namespace velka::view
