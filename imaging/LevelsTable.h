// The curve of one colour-levels item.
#pragma once

#include <cstdint>

struct COLORLEVELSITEM;

namespace velka {

/// Fills `row` with its own indices.
void fillIdentity(uint8_t (&row)[256]);

/// Replaces every entry of `row` by what `item` makes of it, in double precision:
/// the input range stretched to 0..255, raised to the power 1 / gamma, brought
/// into the output range, rounded half up after each step. Any item will do:
/// equal input points make a step behind the black point, a gamma of 0 leaves
/// only full white, and values without a number become 0.
void applyLevels(const COLORLEVELSITEM& item, uint8_t (&row)[256]);

}  // namespace velka
