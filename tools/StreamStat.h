#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace velka {

// What a standard-model command stream holds.
struct StreamStat {
  std::uint64_t pages = 0;      // form feeds
  std::uint64_t bands = 0;      // stretches of paper printed without a move of a band's height
  std::uint64_t blocks = 0;     // raster blocks, one colour and one head pass each
  std::uint64_t blackDots = 0;  // set bits of the black blocks
  std::uint64_t redDots = 0;    // set bits of the red blocks
};

// The first place where the bytes are no command stream.
struct StreamFault {
  std::size_t offset = 0;
  std::string what;
};

// Adds up `stream` in `stat` until its end or the first fault. Knows the bytes
// of the commands only and shares no code with what writes them, so that it can
// serve as their check. Any bytes are safe to pass.
[[nodiscard]] std::optional<StreamFault> readStream(std::span<const std::uint8_t> stream,
                                                    StreamStat& stat);

}  // namespace velka
