// The PPDs of both models, as the build made them, inside the program.
#pragma once

#include <optional>
#include <string_view>

namespace velka::app {

/// The text of a PPD by its file's name; none where there is none of that name. It lives as
/// long as the program.
[[nodiscard]] std::optional<std::string_view> embeddedPpd(std::string_view name);

}  // namespace velka::app
