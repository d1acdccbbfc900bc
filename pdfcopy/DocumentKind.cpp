#include "DocumentKind.h"

namespace velka {

DocumentKind documentKind(std::string_view head) noexcept {
  constexpr std::string_view kPdf = "%PDF-";
  size_t at = head.find(kPdf);
  while (at != std::string_view::npos) {
    if (at == 0 || head[at - 1] == '\n' || head[at - 1] == '\r') return DocumentKind::Pdf;
    at = head.find(kPdf, at + 1);
  }
  return head.starts_with("%!") ? DocumentKind::PostScript : DocumentKind::Picture;
}

}  // namespace velka
