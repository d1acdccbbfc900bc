#include "Secret.h"

#include <sys/random.h>

#include <array>
#include <cstdint>

namespace velka::serve {

std::string newSecret() {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::array<uint8_t, 16> bytes{};
  if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return {};
  std::string word;
  for (const uint8_t byte : bytes) {
    word.push_back(kDigits[byte / 16U]);
    word.push_back(kDigits[byte % 16U]);
  }
  return word;
}

bool sameSecret(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) return false;
  unsigned difference = 0;
  for (size_t i = 0; i < one.size(); ++i) {
    difference |= static_cast<unsigned char>(one[i]) ^ static_cast<unsigned char>(other[i]);
  }
  return difference == 0;
}

}  // namespace velka::serve
