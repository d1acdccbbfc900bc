// What the parts of a command line must not be together.
#pragma once

#include <optional>
#include <string>

#include "Arguments.h"

namespace velka::view {

/// What is missing, too much or contradictory in arguments that are sound one by one;
/// none where all is fine.
[[nodiscard]] std::optional<std::string> whatContradicts(const Arguments& arguments);

/// Whether an output of pictures is named so that no format follows; what to do then.
[[nodiscard]] std::optional<std::string> whatHasNoFormat(const Arguments& arguments);

}  // namespace velka::view
