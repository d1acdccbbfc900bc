// Texts of at most 255 characters: paths and command lines of a job.
#pragma once

#include <array>

namespace velka {

struct FixedText {
  std::array<char, 256> chars = {};
  bool cut = false;  ///< the whole text did not fit

  [[nodiscard]] const char* text() const noexcept { return chars.data(); }
};

/// The printf-formatted text, cut where it is too long, empty after a format error.
[[nodiscard]] __attribute__((format(printf, 1, 2))) FixedText formatText(const char* format,
                                                                         ...) noexcept;

/// Copies a text into a buffer of 256 bytes handed in across the public surface.
void copyText(const FixedText& text, char* buffer) noexcept;

}  // namespace velka
