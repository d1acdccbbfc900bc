// The print heads, as far as paper shows them: which pin strikes where, in which
// ink, and how far apart the dots of a bit-image mode are.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace velka::decode {

/// The finest unit of all positions: 1/3600 inch.
inline constexpr int64_t kUnitsPerInch = 3600;

enum class Model : uint8_t {
  Standard,   ///< one column of pins; each block names its ink
  OrloFront,  ///< 18 black and 6 red dots; black first along the paper
  OrloBack,   ///< the same head, paper the other way: red first
};

enum class Ink : uint8_t { Black, Red };

/// "standard", "orlo-front" or "orlo-back".
[[nodiscard]] std::string_view nameOf(Model model);

/// The model of that name.
[[nodiscard]] std::optional<Model> modelNamed(std::string_view name);

[[nodiscard]] inline bool isOrlo(Model model) {
  return model != Model::Standard;
}

/// A bit-image mode.
struct Mode {
  uint8_t code;
  uint8_t bytesPerColumn;  ///< 1, 3 or 9; on the Orlo head always 3
  int32_t columnPitch;     ///< units from a column to the next
  int32_t dotPitch;        ///< units from a dot to the one below
};

/// The mode of that code on a head; none where the head does not know it.
[[nodiscard]] std::optional<Mode> findMode(uint8_t code, bool orlo);

/// Where a column's bit strikes: slots down from the head's first dot, and its ink.
struct Pin {
  int32_t slot;
  Ink ink;
};

/// `bit` counts from the topmost (0), `colour` is the block's (0 black, 1 red).
[[nodiscard]] Pin pinOf(Model model, int32_t bit, int32_t colour);

}  // namespace velka::decode
