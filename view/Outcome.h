// How a part of the viewer tells that it failed.
#pragma once

#include <optional>
#include <string>

namespace velka::view {

/// What went wrong, in words for the user; none where nothing did.
using Problem = std::optional<std::string>;

/// The exit statuses.
enum Status : int { kDone = 0, kFailed = 1, kWrongUse = 2 };

}  // namespace velka::view
