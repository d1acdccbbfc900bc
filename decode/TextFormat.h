// Texts with numbers in them.
#pragma once

#include <string>

namespace velka::decode {

/// As printf() would write it, up to 500 characters.
[[nodiscard]] [[gnu::format(printf, 1, 2)]] std::string format(const char* form, ...);

}  // namespace velka::decode
