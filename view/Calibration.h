// The pages that tell what a printer does.
#pragma once

#include <string>

namespace velka::view {

/// Whether there is a page of that name.
[[nodiscard]] bool isCalibration(const std::string& name);

/// The names of all of them, in words.
[[nodiscard]] std::string calibrationNames();

}  // namespace velka::view
