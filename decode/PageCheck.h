// What a page lacks or does wrong on paper, as far as its stream alone can tell.
#pragma once

#include <cstdint>
#include <string>

#include "PageReader.h"

namespace velka::decode {

/// What was found; lengths and places in units.
struct PageFlaws {
  uint64_t gaps = 0;  ///< of white inside the print that the printed page cannot have
  int64_t widestGap = 0;
  int64_t firstGap = 0;     ///< its place on the form
  uint64_t mergedRows = 0;  ///< rows of dots that hold two rows of one ink, one over the other
  int64_t beyondForm = 0;   ///< how far the print goes beyond the form's end
  int64_t form = 0;         ///< length of the form

  [[nodiscard]] bool any() const { return gaps > 0 || mergedRows > 0 || beyondForm > 0; }
};

/// Looks for
/// - print beyond the form: more than a line, which is what the form's length is rounded
///   by. Print beyond 256 lines is not judged: no form of that length can be told.
/// and on the standard head, whose every dot a page strikes once,
/// - merged rows: dots of one ink on one row struck from two places of the paper;
/// - white rows between bands that follow each other: of two passes a row apart, where
///   bands lie a row or two off each other, none (or fewer) touch, and strokes end at
///   one and go on in the other, at three places or more (at one where white is sent, see
///   below); of eight dots, where no two bands are nearer than the
///   24 rows that a head of 24 dots would print, and both edges have ink;
/// - white where black forgot the way that red made: black that stands lower than the
///   red before it by at least that way, everywhere on the page. That alone may be
///   meant; it counts where other flaws, or white columns sent before the ink of every
///   block, show which way of counting rows the page follows.
/// White between two lines of text is none of these.
[[nodiscard]] PageFlaws checkPage(const Page& page, Model model);

/// The flaws in words, without a line end; empty where there are none.
[[nodiscard]] std::string textOf(const PageFlaws& flaws);

}  // namespace velka::decode
