// Halftoning of an ink plane into dots and blanks.
#pragma once

namespace velka {

/// Halftones a plane of one byte a pixel (255 no ink, 0 full ink) into dots (0)
/// and blanks (255). Both printer models print through it.
///
/// Modes: 1 a fixed threshold of 101; 3, 4, 5, 6 ordered screens of 6, 8, 12 and
/// 16 cells a side; all others error diffusion (R. Floyd and L. Steinberg, "An
/// adaptive algorithm for spatial grey scale", 1976), which also changes `in`.
///
/// `in` and `out` are planes of `rows` rows of `stride` bytes that do not overlap, or
/// one plane, which is then halftoned in place;
/// the first `width` bytes of a row are pixels, at most `stride`; the rest is
/// neither read nor written. `dotFactor` is the level a printed dot counts as, in
/// tenths of the pixel's value; values up to `threshold` print. Both matter to
/// error diffusion only, and any value will do. Returns 1; null planes make it do
/// nothing.
int dither(int mode, unsigned char* in, unsigned char* out, unsigned rows, unsigned width,
           unsigned stride, short dotFactor, short threshold);

}  // namespace velka
