// Small pages for the tests of pictures.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "PageReader.h"
#include "PaperView.h"
#include "reference/ExpectedStream.h"

namespace velka::viewtest {

using Bytes = std::vector<uint8_t>;
using reference::ExpectedStream;

/// Of two pages that are compared.
inline constexpr std::array<decode::Model, 2> kBothStandard{decode::Model::Standard,
                                                            decode::Model::Standard};

/// The first page of a standard-model stream, which must outlive it.
inline decode::Page pageOf(const Bytes& stream) {
  return decode::PageReader(stream, decode::Model::Standard).next().value_or(decode::Page{});
}

/// Paper as wide as stated in units and no wider, drawn at the stream's own resolution.
inline view::PaperView viewOf(const decode::Page& page, int64_t width) {
  view::PaperView paper;
  paper.grid.add(page);
  paper.width = {width, true};
  return paper;
}

/// The picture, or a picture without pixels where there is none.
inline view::Picture pictureOf(view::Drawing drawing) {
  auto* picture = std::get_if<view::Picture>(&drawing);
  return picture != nullptr ? std::move(*picture) : view::Picture{};
}

}  // namespace velka::viewtest
