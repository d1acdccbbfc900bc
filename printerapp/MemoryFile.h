// A text as a file without a name, for readers that want one.
#pragma once

#include <string_view>

#include "Descriptor.h"

namespace velka::app {

/// Open at its end, closed on exec; none where the system has no memory for it.
[[nodiscard]] UniqueFd fileOf(std::string_view text) noexcept;

}  // namespace velka::app
