#include "Head.h"

#include <array>
#include <utility>

namespace velka::decode {
namespace {

constexpr int32_t perInch(int32_t dots) {
  return static_cast<int32_t>(kUnitsPerInch) / dots;
}

constexpr std::array<Mode, 10> kModes{{
    {0, 1, perInch(60), perInch(60)},
    {1, 1, perInch(120), perInch(60)},
    {4, 1, perInch(80), perInch(60)},
    {6, 1, perInch(90), perInch(60)},
    {32, 3, perInch(60), perInch(180)},
    {33, 3, perInch(120), perInch(180)},
    {38, 3, perInch(90), perInch(180)},
    {39, 3, perInch(180), perInch(180)},
    {40, 3, perInch(360), perInch(180)},
    {41, 9, perInch(180), perInch(180)},
}};

constexpr uint8_t kOrloColumnBytes = 3;
constexpr int32_t kBlackDots = 18;
constexpr int32_t kRedDots = 6;
constexpr int32_t kGap = 10;  // dot rows between the inks

constexpr std::array<std::pair<Model, std::string_view>, 3> kNames{{
    {Model::Standard, "standard"},
    {Model::OrloFront, "orlo-front"},
    {Model::OrloBack, "orlo-back"},
}};

}  // namespace

std::string_view nameOf(Model model) {
  for (const auto& [value, name] : kNames) {
    if (value == model) return name;
  }
  return "unknown";
}

std::optional<Model> modelNamed(std::string_view name) {
  for (const auto& [value, known] : kNames) {
    if (known == name) return value;
  }
  return std::nullopt;
}

std::optional<Mode> findMode(uint8_t code, bool orlo) {
  for (Mode mode : kModes) {
    if (mode.code != code) continue;
    if (!orlo) return mode;
    if (mode.bytesPerColumn > kOrloColumnBytes) return std::nullopt;
    mode.bytesPerColumn = kOrloColumnBytes;
    return mode;
  }
  return std::nullopt;
}

Pin pinOf(Model model, int32_t bit, int32_t colour) {
  switch (model) {
    case Model::OrloFront:
      return bit < kBlackDots ? Pin{bit, Ink::Black} : Pin{bit + kGap, Ink::Red};
    case Model::OrloBack:
      return bit < kRedDots ? Pin{bit, Ink::Red} : Pin{bit + kGap, Ink::Black};
    case Model::Standard:
      break;
  }
  return {bit, colour == 1 ? Ink::Red : Ink::Black};
}

}  // namespace velka::decode
