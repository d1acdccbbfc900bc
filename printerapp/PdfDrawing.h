// The pages of a PDF as CUPS raster. Documents come from anybody, so this runs in a process
// of its own, with limits on its memory and time.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Model.h"
#include "PageLayout.h"

namespace velka::app {

/// What is to be drawn how. Its text form is the command line of the drawing process.
struct DrawingJob {
  Resolution dpi;
  Extent paper;  ///< in hundredths of a millimetre
  Wishes wishes;
  std::vector<PageRange> pages;  ///< all where empty
  int mostPages = 0;             ///< a document with more is refused; 0 for no limit
  std::string copy;              ///< a file that gets the laid out pages as a PDF, or none
};

/// How drawing ends; these are exit statuses.
enum class Drawn { Well = 0, NoDocument = 2, Locked = 3, TooManyPages = 4, NoPage = 5, Failed = 6 };

[[nodiscard]] std::vector<std::string> wordsOf(const DrawingJob& job);
/// False where a word is none of those.
[[nodiscard]] bool readWords(const std::vector<std::string>& words, DrawingJob& job);

/// The page's size in dots.
struct Dots {
  uint32_t width = 0;
  uint32_t height = 0;
};
[[nodiscard]] Dots dotsOf(const DrawingJob& job) noexcept;

/// Draws the PDF on a descriptor that can be sought in as raster to another descriptor. What
/// is wrong goes to standard error in a line.
[[nodiscard]] Drawn drawPdf(int pdf, int raster, const DrawingJob& job);

/// What the process does that draws: its arguments after its name, a PDF on standard input,
/// raster on standard output. Returns its exit status.
int runDrawing(int count, const char* const words[]);

}  // namespace velka::app
