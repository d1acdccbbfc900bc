// The calibration pages by their names.
#pragma once

#include <string>

#include "PageSettings.h"

namespace velka::calibration {

struct Page {
  const char* name;
  Drawn (*draw)(const PageSettings& settings);
  bool hasSettings;  ///< whether paper and options make a difference to it
};

/// The page of that name; null where there is none.
[[nodiscard]] const Page* pageNamed(const std::string& name);

/// The names of all of them, in words.
[[nodiscard]] std::string pageNames();

}  // namespace velka::calibration
