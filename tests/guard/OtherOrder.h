// Rasters that libcups reads and does not write: of the other byte order, and of version 1.
#pragma once

#include <algorithm>
#include <cstring>

#include "support/RasterBuilder.h"

namespace velka::testing {

/// The numbers of a header in the other order; texts stay.
inline Bytes headerInOtherOrder(const cups_page_header2_t& header) {
  constexpr size_t kFirst = offsetof(cups_page_header2_t, AdvanceDistance);
  constexpr size_t kNumbers = 81;
  Bytes bytes(sizeof header);
  std::memcpy(bytes.data(), &header, sizeof header);
  for (size_t i = 0; i < kNumbers; ++i) {
    const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(kFirst + 4 * i);
    std::reverse(at, at + 4);
  }
  return bytes;
}

inline Bytes syncOf(uint32_t number, bool otherOrder) {
  Bytes bytes(sizeof number);
  std::memcpy(bytes.data(), &number, sizeof number);
  if (otherOrder) std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

inline void appendLines(Bytes& stream, const RasterPage& page) {
  for (const Bytes& line : page.lines) stream.insert(stream.end(), line.begin(), line.end());
}

/// A version 3 stream.
inline Bytes inOtherOrder(const std::vector<RasterPage>& pages) {
  Bytes stream = syncOf(CUPS_RASTER_SYNC, true);
  for (const RasterPage& page : pages) {
    const Bytes header = headerInOtherOrder(page.header);
    stream.insert(stream.end(), header.begin(), header.end());
    appendLines(stream, page);
  }
  return stream;
}

/// The headers end before the names of colours.
inline Bytes ofVersionOne(const std::vector<RasterPage>& pages) {
  Bytes stream = syncOf(CUPS_RASTER_SYNCv1, false);
  for (const RasterPage& page : pages) {
    const auto* header = reinterpret_cast<const uint8_t*>(&page.header);
    stream.insert(stream.end(), header, header + sizeof(cups_page_header_t));
    appendLines(stream, page);
  }
  return stream;
}

}  // namespace velka::testing
