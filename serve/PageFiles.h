// The files that the page consists of, as they stand in `page`.
#pragma once

#include <optional>
#include <string_view>

namespace velka::serve {

/// The contents of a file; none where there is none of that name. It lives as long as the
/// program.
[[nodiscard]] std::optional<std::string_view> pageFile(std::string_view name);

}  // namespace velka::serve
