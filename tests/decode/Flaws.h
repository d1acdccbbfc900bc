// What the check of pages says of the first page of a stream.
#pragma once

#include <string>
#include <vector>

#include "PageCheck.h"
#include "decode/Dots.h"

namespace velka::decodetest {

inline decode::PageFlaws flawsOf(const std::vector<uint8_t>& stream,
                                 decode::Model model = decode::Model::Standard) {
  const auto pages = pagesOf(stream, model);
  return pages.empty() ? decode::PageFlaws{} : decode::checkPage(pages[0], model);
}

inline std::string saidOf(const std::vector<uint8_t>& stream,
                          decode::Model model = decode::Model::Standard) {
  return textOf(flawsOf(stream, model));
}

}  // namespace velka::decodetest
