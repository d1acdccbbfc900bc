// One separated page to its commands: blocks, positioning, passes, eject
// command, copies and the split print. Everything that outlives a page stands in
// `GeneratorState`.
#pragma once

#include <cstdint>

#include "BitmapRecords.h"
#include "DeviceRecords.h"
#include "reference/ReferenceCommands.h"
#include "reference/ReferenceSeparation.h"

namespace velka::reference {

/// What the generator and the device record carry from page to page.
struct GeneratorState {
  bool blackStarted = false;  ///< the last black block held data
  bool redStarted = false;
  int firstRedRow = 0;     ///< kept until a later page marks its red plane
  int initialYOffset = 0;  ///< pixels moved down before the first band
  int yCorrection = 0;     ///< top of a split page's first kept band
  Bytes copyBuffer;        ///< page commands waiting to be repeated
};

/// What a page is encoded with.
struct PageSetting {
  tagOEMCFG options{};
  int printQuality = 0;  ///< dots per inch across
  int yResolution = 0;   ///< dots per inch down
  bool collate = false;
  uint32_t pageNumber = 1;
};

/// One packed block. `command` is empty when no column holds a dot.
struct Block {
  Bytes command;
  uint32_t leadingSkip = 0;  ///< columns
};

/// Colour 1 takes the black plane, 2 the red one.
Block packBlock(const Separation& planes, const _RECTL& area, int colour, BitImageMode mode,
                float xDivisor, int pass);

/// Encodes the page and writes its commands, copies that are not collated
/// included, to `out`. False when the page ends without output or midway.
bool encodeAndSend(const Separation& planes, const PageSetting& setting, GeneratorState& state,
                   Bytes& out);

/// What ends the job: the collated copies, then the end-of-document command.
void sendEndOfJob(const tagOEMCFG& options, GeneratorState& state, Bytes& out);

}  // namespace velka::reference
