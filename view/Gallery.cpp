#include "Gallery.h"

#include <algorithm>
#include <utility>

namespace velka::view {
namespace {

// Standard output takes one PNG, but a PDF of any length.
bool fits(const Arguments& arguments, uint64_t pages) {
  return arguments.output != "-" || formatOf(arguments) == Format::Pdf || pages <= 1;
}

}  // namespace

Gallery::Gallery(const Arguments& arguments, std::string stem, bool single)
    : format_(formatOf(arguments)),
      output_(arguments.output),
      stem_(std::move(stem)),
      single_(single) {
  if (format_ != Format::Pdf) return;
  pdf_ = std::make_unique<PdfWriter>(nameOf(1));
}

Problem Gallery::add(PictureRows& rows, uint64_t number) {
  return pdf_ ? pdf_->add(rows) : writePng(rows, nameOf(number));
}

Problem Gallery::finish() {
  return pdf_ ? pdf_->finish() : std::nullopt;
}

std::string Gallery::nameOf(uint64_t number) const {
  if (format_ == Format::Pdf) return output_.empty() ? stem_ + ".pdf" : output_;
  if (single_ && !output_.empty()) return output_;
  std::string name = output_.empty() ? stem_ : output_;
  std::string ending = ".png";
  if (formatOfName(output_)) {
    ending = name.substr(name.size() - ending.size());
    name.resize(name.size() - ending.size());
  }
  return name.append("-").append(std::to_string(number)).append(ending);
}

Problem choosePages(const Arguments& arguments, bool picked, uint64_t pages, uint64_t& chosen) {
  const PageRange range = picked ? PageRange{} : arguments.pages.value_or(PageRange{});
  chosen = range.first > pages ? 0 : std::min(range.last, pages) - range.first + 1;
  if (chosen == 0 && picked) return "nothing is printed there: a page without ink is not sent";
  if (chosen == 0 && arguments.pages) {
    return "there is no page " + std::to_string(range.first) + "; the stream has " +
           std::to_string(pages) + " (pages without ink may not be sent)";
  }
  if (chosen > kMostPictures) {
    return std::to_string(chosen) + " pages are more than one run draws (" +
           std::to_string(kMostPictures) + "); choose some with --page";
  }
  if (!fits(arguments, chosen)) {
    return "standard output takes one picture, not " + std::to_string(chosen) +
           "; choose a page with --page, or --format pdf";
  }
  return std::nullopt;
}

}  // namespace velka::view
