#include "SheetValues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>

namespace velka::view {
namespace {

// A decimal number as whole steps of its last place, so that nothing is rounded.
struct Decimal {
  int64_t steps = 0;
  int places = 0;
};

constexpr int kMostPlaces = 6;
constexpr size_t kMostDigits = 12;  // times 10^6 fits 64 bits

std::optional<Decimal> readDecimal(std::string text) {
  Decimal number;
  const size_t point = text.find('.');
  if (point != std::string::npos) {
    number.places = static_cast<int>(text.size() - point - 1);
    text.erase(point, 1);
    if (number.places == 0 || number.places > kMostPlaces) return std::nullopt;
  }
  if (text.size() > kMostDigits) return std::nullopt;
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number.steps);
  if (error != std::errc() || stop != text.data() + text.size()) return std::nullopt;
  return number;
}

int64_t stepsOf(const Decimal& number, int places) {
  int64_t steps = number.steps;
  for (int i = number.places; i < places; ++i) steps *= 10;
  return steps;
}

std::string textOf(int64_t steps, int places) {
  std::string digits = std::to_string(std::abs(steps));
  if (places > 0) {
    const auto least = static_cast<size_t>(places) + 1;
    if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
    digits.insert(digits.size() - static_cast<size_t>(places), 1, '.');
  }
  return (steps < 0 ? "-" : "") + digits;
}

// FROM..TO/STEP
bool addRange(const std::string& text, size_t dots, std::vector<std::string>& values) {
  const size_t slash = text.find('/', dots);
  if (slash == std::string::npos) return false;
  const auto from = readDecimal(text.substr(0, dots));
  const auto to = readDecimal(text.substr(dots + 2, slash - dots - 2));
  const auto step = readDecimal(text.substr(slash + 1));
  if (!from || !to || !step || step->steps <= 0) return false;
  const int places = std::max({from->places, to->places, step->places});
  const int64_t first = stepsOf(*from, places);
  const int64_t last = stepsOf(*to, places);
  const int64_t by = stepsOf(*step, places) * (last < first ? -1 : 1);
  if ((last - first) / by >= static_cast<int64_t>(kMostSheetValues)) return false;
  for (int64_t i = 0; i <= (last - first) / by; ++i) {
    values.push_back(textOf(first + i * by, places));
  }
  return true;
}

bool addValue(const std::string& text, std::vector<std::string>& values) {
  const size_t dots = text.find("..");
  if (dots != std::string::npos) return addRange(text, dots, values);
  values.push_back(text);
  return !text.empty();
}

}  // namespace

std::optional<SheetOption> readSheetOption(const std::string& text) {
  const size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) return std::nullopt;
  SheetOption option{text.substr(0, equals), {}};
  size_t at = equals;
  while (at != std::string::npos) {
    const size_t comma = text.find(',', at + 1);
    if (!addValue(text.substr(at + 1, comma - at - 1), option.values)) return std::nullopt;
    at = comma;
  }
  if (option.values.size() > kMostSheetValues) return std::nullopt;
  return option;
}

}  // namespace velka::view
