// What a stream holds, in numbers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "CommandReader.h"
#include "DotGrid.h"
#include "Head.h"

namespace velka::decode {

/// How fast a printer moves, in millimetres a second, both above 0. An estimate:
/// neither speeding up nor turning round is counted.
struct Speeds {
  double head = 300;  ///< across, printing or not
  double feed = 100;  ///< along the paper
};

struct StreamStats {
  uint64_t bytes = 0;
  uint64_t pages = 0;              ///< form feeds
  uint64_t bands = 0;              ///< stretches printed from one place of the paper
  uint64_t blocks = 0;             ///< bit images
  std::array<uint64_t, 2> dots{};  ///< struck, black and red; one struck twice counts twice
  /// Places on the paper that hold a dot, black and red, one struck twice counted
  /// once; none where a page is too large to draw.
  std::optional<std::array<uint64_t, 2>> places;
  uint64_t passes = 0;      ///< runs of the head in one colour without a paper move
  uint64_t paperMoves = 0;  ///< forward and back, form feeds apart
  int64_t movedOn = 0;      ///< units
  int64_t movedBack = 0;    ///< units
  double seconds = 0;       ///< estimate of the printing time
  /// Share of the paper that black and red cover, of 1; none where a form's length is
  /// not known or a page is too large to draw.
  std::optional<std::array<double, 2>> coverage;
  uint64_t touched = 0;        ///< cells written or looked at for places and coverage
  std::optional<Fault> fault;  ///< the numbers count what stands before it
};

/// Reads a whole stream; places and coverage are those of its pages as they are drawn
/// on paper of that width.
[[nodiscard]] StreamStats readStats(Bytes stream, Model model, const Speeds& speeds,
                                    PaperWidth width);

}  // namespace velka::decode
