// The PPDs of both models, as the build made them, inside the program.
#pragma once

#include <string_view>

namespace velka::app {

[[nodiscard]] std::string_view standardPpd() noexcept;
[[nodiscard]] std::string_view orloPpd() noexcept;

}  // namespace velka::app
