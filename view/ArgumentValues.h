// The values of the command line's options, one by one.
#pragma once

#include <optional>
#include <string>

#include "Arguments.h"

namespace velka::view {

/// Takes the value of the option that getopt_long() gave as `code`, `text` being its
/// value or null; what is wrong with it, with what it may be.
[[nodiscard]] std::optional<std::string> takeOption(int code, const char* text,
                                                    Arguments& arguments);

}  // namespace velka::view
