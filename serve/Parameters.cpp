#include "Parameters.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace velka::serve {
namespace {

constexpr std::string_view kOption = "o.";
constexpr std::array<std::string_view, 12> kKnown{"page", "tab", "turn", "dpi",   "x",   "y",
                                                  "w",    "h",   "pins", "reach", "ink", "rgb"};
constexpr uint64_t kMostPages = 1'000'000;

template <typename Number>
std::optional<Number> numberOf(const std::optional<std::string>& text, Number least, Number most) {
  Number number{};
  if (!text) return std::nullopt;
  const char* end = text->data() + text->size();
  const auto [stop, error] = std::from_chars(text->data(), end, number);
  if (error != std::errc() || stop != end || !(number >= least && number <= most))
    return std::nullopt;
  return number;
}

bool isName(const std::string& text) {
  constexpr size_t kLongest = 32;
  return !text.empty() && text.size() <= kLongest && std::ranges::all_of(text, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
  });
}

// Who names no tab has none that a newer wish could come from.
std::optional<Refusal> takeTab(const Request& request, Wish& wish) {
  const auto tab = request.parameter("tab");
  if (!tab) return std::nullopt;
  const auto turn = numberOf<uint64_t>(request.parameter("turn"), 0, UINT64_MAX);
  if (!isName(*tab) || !turn) return Refusal{"a tab has a plain name and a turn"};
  wish.tab = *tab;
  wish.turn = *turn;
  return std::nullopt;
}

}  // namespace

std::variant<Wish, Refusal> wishOf(const Request& request, const PrinterOptions& options) {
  Pairs asked;
  for (const auto& [name, value] : request.query) {
    if (name.starts_with(kOption)) {
      asked.emplace_back(name.substr(kOption.size()), value);
    } else if (std::ranges::find(kKnown, name) == kKnown.end()) {
      return Refusal{"there is no parameter " + name};
    }
  }
  auto settings = options.read(asked);
  if (const auto* refusal = std::get_if<Refusal>(&settings)) return *refusal;
  Wish wish{std::get<Settings>(std::move(settings)), 1, "", 0};
  if (request.parameter("page")) {
    const auto page = numberOf<uint64_t>(request.parameter("page"), 1, kMostPages);
    if (!page) return Refusal{"pages count from 1"};
    wish.page = *page;
  }
  if (auto refusal = takeTab(request, wish)) return *refusal;
  return wish;
}

std::optional<Look> lookOf(const Request& request) {
  constexpr double kLeastDpi = 10;
  constexpr double kMostDpi = 2400;
  const auto dpi = numberOf(request.parameter("dpi"), kLeastDpi, kMostDpi);
  std::array<int64_t, 4> numbers{};
  constexpr std::array kNames{"x", "y", "w", "h"};
  for (size_t i = 0; i < kNames.size(); ++i) {
    const auto number = numberOf<int64_t>(request.parameter(kNames.at(i)), INT32_MIN, INT32_MAX);
    if (!number) return std::nullopt;
    numbers.at(i) = *number;
  }
  const Look look{dpi.value_or(0),
                  {numbers[0], numbers[1], numbers[2], numbers[3]},
                  request.parameter("pins") == "1"};
  if (!dpi || !isSound(look.frame)) return std::nullopt;
  return look;
}

std::optional<MillimetrePlace> placeOf(const Request& request) {
  constexpr double kFarthest = 20000;
  constexpr double kLongestReach = 2;
  const auto x = numberOf(request.parameter("x"), 0.0, kFarthest);
  const auto y = numberOf(request.parameter("y"), 0.0, kFarthest);
  const auto reach = numberOf(request.parameter("reach"), 0.0, kLongestReach);
  if (!x || !y || !reach) return std::nullopt;
  return MillimetrePlace{*x, *y, *reach};
}

std::optional<uint32_t> colourOf(const Request& request) {
  constexpr size_t kDigits = 6;
  constexpr int kHexadecimal = 16;
  const auto text = request.parameter("rgb");
  if (!text || text->size() != kDigits) return std::nullopt;
  uint32_t rgb = 0;
  const char* end = text->data() + text->size();
  const auto [stop, error] = std::from_chars(text->data(), end, rgb, kHexadecimal);
  return error == std::errc() && stop == end ? std::optional(rgb) : std::nullopt;
}

std::optional<InkWish> inkWishOf(const Request& request) {
  const auto ink = request.parameter("ink");
  const auto rgb = colourOf(request);
  if ((ink != "red" && ink != "black") || !rgb) return std::nullopt;
  return InkWish{*rgb, ink == "red" ? Ink::Red : Ink::Black};
}

}  // namespace velka::serve
