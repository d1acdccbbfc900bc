// Pictures to files.
#pragma once

#include <memory>
#include <string>

#include "Files.h"
#include "Outcome.h"
#include "PictureRows.h"

namespace velka::view {

/// Writes one picture as PNG, with its resolution; few colours make a small file. Rows
/// are drawn a strip at a time.
[[nodiscard]] Problem writePng(PictureRows& rows, const std::string& name);
[[nodiscard]] Problem writePng(const Picture& picture, const std::string& name);

/// The longest page that a PDF may have, in points (1/72 inch): 5.08 m.
inline constexpr double kLongestPdfPage = 14400;

/// A PDF of one picture a page, each in its size on paper. A picture longer than a
/// page may be takes several, cut between two rows of pixels.
class PdfWriter {
 public:
  explicit PdfWriter(const std::string& name);
  ~PdfWriter();
  PdfWriter(const PdfWriter&) = delete;
  PdfWriter& operator=(const PdfWriter&) = delete;

  [[nodiscard]] Problem add(PictureRows& rows);
  [[nodiscard]] Problem add(Picture picture);
  /// Ends the file; one without pages is not kept.
  [[nodiscard]] Problem finish();

 private:
  struct Parts;
  [[nodiscard]] Problem addPage(PictureRows& rows, int64_t top, int64_t height);

  std::unique_ptr<Parts> parts_;
};

}  // namespace velka::view
