// Sweeps down a page that put every dot of the planes where the planes have it.
//
// Both models print this way: the standard head's dots strike one ink at a time, each in
// blocks of its own, the Orlo head's dots have their inks.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "BitImageMode.h"
#include "CommandBuilders.h"
#include "HeadStops.h"
#include "PaperWay.h"
#include "PassColumns.h"
#include "PrintRuns.h"

namespace velka {

/// A head at a pair of resolutions.
struct ExactHead {
  NozzleGroup black;
  NozzleGroup red;
  bool namesInk;      ///< blocks hold one ink, which each says first
  BitImageMode mode;  ///< bytes of a column: above 0
  int xdpi;
  int ydpi;

  /// At 360 rows an inch the dots lie two rows apart, and a second pass prints between.
  [[nodiscard]] int passes() const noexcept { return ydpi == 360 ? 2 : 1; }
};

/// The standard model's head of `headPins` dots; none where it has no mode for the
/// resolutions, or one without data.
[[nodiscard]] std::optional<ExactHead> standardHead(int16_t headPins, int16_t xdpi,
                                                    int16_t ydpi) noexcept;

/// The Orlo model's head; none where the model does not print at the resolutions.
[[nodiscard]] std::optional<ExactHead> orloHead(const HeadLayout& layout, int xdpi,
                                                int ydpi) noexcept;

/// The inks of a sweep.
struct SweepInks {
  bool black;
  bool red;
};

class ExactSweep {
 public:
  /// @param topRow rows between the page's start and its first row
  ExactSweep(const ExactHead& head, const DotPlane& black, const DotPlane& red, int64_t topRow,
             const CommandSink& sink) noexcept;

  /// Looks through the planes. False when memory runs out.
  [[nodiscard]] bool prepare() noexcept;

  /// Appends the commands of one sweep, from wherever the paper stands. False when
  /// memory runs out.
  [[nodiscard]] bool print(const SweepInks& inks) noexcept;

 private:
  enum Colour : uint8_t { kBlack, kRed };
  struct Ink {
    Colour colour;
    NozzleGroup nozzles;
    const DotPlane& plane;
    const InkRows& rows;
    RowRange printed;
  };

  [[nodiscard]] int64_t lowestBase() const noexcept;
  [[nodiscard]] bool printStop(const HeadStop& stop) noexcept;
  [[nodiscard]] bool printPass(const std::array<Ink, 2>& inks, int64_t row) noexcept;
  void addSlots(const Ink& ink, int64_t row) noexcept;
  [[nodiscard]] bool strike(int64_t row, Colour colour) noexcept;
  [[nodiscard]] bool sendBlock(const PrintRun& run, std::span<const uint8_t> data,
                               Colour colour) noexcept;

  ExactHead head_;
  std::array<DotPlane, 2> planes_;
  std::array<InkRows, 2> rows_;
  PassColumns columns_;
  RunRules runRules_;
  CommandSink sink_;
  PaperWay paper_;
};

}  // namespace velka
