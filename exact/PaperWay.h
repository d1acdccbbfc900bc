// The paper's way: where it stands, and the moves that bring it elsewhere.
#pragma once

#include <cstdint>

#include "CommandBuilders.h"

namespace velka {

/// One paper position for both inks, in 1/360 inch from where the page starts. Rows are
/// `ydpi` an inch; each move goes from where the paper stands to where it is wanted, so
/// that nothing adds up.
class PaperWay {
 public:
  /// @param ydpi above 0
  /// @param topRow how many rows below its start the page's first row lies
  PaperWay(int ydpi, int64_t topRow, const CommandSink& sink) noexcept
      : ydpi_(ydpi), topRow_(topRow), sink_(sink) {}

  /// Brings `row` under the head's first slot, in as many moves as the distance needs;
  /// no command where it is there already. False when memory runs out.
  [[nodiscard]] bool moveTo(int64_t row) noexcept;

 private:
  int ydpi_;
  int64_t topRow_;
  int64_t stand_ = 0;  // 1/360 inch
  CommandSink sink_;
};

}  // namespace velka
