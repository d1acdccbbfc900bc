// Where pictures go: a file a page, or pages of one file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Arguments.h"
#include "Outcome.h"
#include "PictureFiles.h"

namespace velka::view {

class Gallery {
 public:
  /// Without an output in `arguments` files are named after `stem`. A `single`
  /// picture gets the output's name as it is, others their page's number in it.
  Gallery(const Arguments& arguments, std::string stem, bool single);

  /// `number` is the page's in its stream.
  [[nodiscard]] Problem add(PictureRows& rows, uint64_t number);
  [[nodiscard]] Problem finish();

  /// The file that a page goes to.
  [[nodiscard]] std::string nameOf(uint64_t number) const;

 private:
  Format format_;
  std::string output_;
  std::string stem_;
  bool single_;
  std::unique_ptr<PdfWriter> pdf_;
};

/// The most pictures of one run, unless pages are chosen.
inline constexpr uint64_t kMostPictures = 1000;

/// How many of a stream's `pages` the command line wants drawn, all of them where they
/// are `picked` already; what is wrong with that many.
[[nodiscard]] Problem choosePages(const Arguments& arguments, bool picked, uint64_t pages,
                                  uint64_t& chosen);

}  // namespace velka::view
