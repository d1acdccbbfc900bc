// A word that nobody can guess.
#pragma once

#include <string>
#include <string_view>

namespace velka::serve {

/// 128 bits from the system's source of randomness as 32 letters and digits; empty where it
/// gives none.
[[nodiscard]] std::string newSecret();

/// Whether two words are the same, in a time that does not tell where they differ.
[[nodiscard]] bool sameSecret(std::string_view one, std::string_view other);

}  // namespace velka::serve
