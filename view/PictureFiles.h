// Pictures to files.
#pragma once

#include <memory>
#include <string>

#include "Files.h"
#include "Outcome.h"
#include "Picture.h"

namespace velka::view {

/// Writes one picture as PNG, with its resolution; few colours make a small file.
[[nodiscard]] Problem writePng(const Picture& picture, const std::string& name);

/// A PDF of one picture a page, each in its size on paper.
class PdfWriter {
 public:
  explicit PdfWriter(const std::string& name);
  ~PdfWriter();
  PdfWriter(const PdfWriter&) = delete;
  PdfWriter& operator=(const PdfWriter&) = delete;

  [[nodiscard]] Problem add(Picture picture);
  /// Ends the file; one without pages is not kept.
  [[nodiscard]] Problem finish();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace velka::view
