#include "RasterStream.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>

#include "HeaderFields.h"

namespace velka {
namespace {

constexpr unsigned kBitsPerByte = 8;
constexpr uint8_t kClearToEnd = 128;

struct Version {
  uint32_t number;
  size_t headerBytes;
  bool compressed;
};

constexpr Version kVersions[] = {{CUPS_RASTER_SYNCv1, sizeof(cups_page_header_t), false},
                                 {CUPS_RASTER_SYNCv2, sizeof(cups_page_header2_t), true},
                                 {CUPS_RASTER_SYNC, sizeof(cups_page_header2_t), false}};

struct RasterCloser {
  void operator()(cups_raster_t* raster) const noexcept { cupsRasterClose(raster); }
};

// A stream in memory for libcups.
struct MemoryStream {
  std::array<uint8_t, sizeof(RasterSync) + kMostHeaderBytes> bytes = {};
  size_t size = 0;
  size_t at = 0;
};

ssize_t readMemory(void* context, unsigned char* buffer, size_t length) noexcept {
  auto& from = *static_cast<MemoryStream*>(context);
  const size_t n = std::min(length, from.size - from.at);
  std::memcpy(buffer, from.bytes.data() + from.at, n);
  from.at += n;
  return static_cast<ssize_t>(n);
}

uint32_t number(RasterSync sync, bool swapped) noexcept {
  if (swapped) std::reverse(sync.begin(), sync.end());
  return std::bit_cast<uint32_t>(sync);
}

// As libcups counts them, in 32 bits.
uint32_t linesOf(const cups_page_header2_t& header) noexcept {
  const bool planar = enumBits(header.cupsColorOrder) == CUPS_ORDER_PLANAR;
  return planar ? header.cupsHeight * header.cupsNumColors : header.cupsHeight;
}

// Of the unit that runs repeat, as libcups counts them.
uint32_t unitBytes(const cups_page_header2_t& header) noexcept {
  const bool chunked = enumBits(header.cupsColorOrder) == CUPS_ORDER_CHUNKED;
  const unsigned bits = chunked ? header.cupsBitsPerPixel : header.cupsBitsPerColor;
  return std::max((bits + kBitsPerByte - 1) / kBitsPerByte, 1U);
}

}  // namespace

std::optional<RasterFormat> rasterFormat(const RasterSync& sync) noexcept {
  for (const bool swapped : {false, true}) {
    for (const Version& version : kVersions) {
      if (number(sync, swapped) == version.number)
        return RasterFormat{sync, version.headerBytes, version.compressed};
    }
  }
  return std::nullopt;
}

std::optional<cups_page_header2_t> pageHeader(const RasterFormat& format,
                                              std::span<const uint8_t> bytes) noexcept {
  if (bytes.size() < format.headerBytes || format.headerBytes > kMostHeaderBytes) return {};
  MemoryStream stream;
  std::ranges::copy(format.sync, stream.bytes.begin());
  std::memcpy(stream.bytes.data() + format.sync.size(), bytes.data(), format.headerBytes);
  stream.size = format.sync.size() + format.headerBytes;
  const std::unique_ptr<cups_raster_t, RasterCloser> raster(
      cupsRasterOpenIO(readMemory, &stream, CUPS_RASTER_READ));
  cups_page_header2_t header = {};
  if (raster == nullptr || cupsRasterReadHeader2(raster.get(), &header) == 0) return {};
  return header;
}

PageLines::PageLines(const RasterFormat& format, const cups_page_header2_t& header) noexcept
    : compressed_(format.compressed),
      lineBytes_(header.cupsBytesPerLine),
      pixelBytes_(unitBytes(header)),
      allLines_(linesOf(header)),
      lines_(allLines_) {
  // Nothing that libcups takes; a line of no bytes would never end.
  if (lineBytes_ == 0) lines_ = 0;
}

uint64_t PageLines::plainBytes() const noexcept {
  return compressed_ || areComplete() ? 0 : allLines_ * lineBytes_ - passed_;
}

void PageLines::skip(uint64_t bytes) noexcept {
  passed_ += std::min(bytes, plainBytes());
  lines_ = allLines_ - passed_ / lineBytes_;
}

size_t PageLines::take(std::span<const uint8_t> bytes) noexcept {
  if (compressed_) return takeCompressed(bytes);
  const uint64_t taken = std::min<uint64_t>(bytes.size(), plainBytes());
  if (taken > 0) skip(taken);
  return static_cast<size_t>(taken);
}

size_t PageLines::takeCompressed(std::span<const uint8_t> bytes) noexcept {
  size_t at = 0;
  while (lines_ > 0 && at < bytes.size()) {
    if (data_ == 0 && left_ > 0) at += takeWholeRuns(bytes.subspan(at));
    if (at == bytes.size()) break;
    if (data_ > 0) {
      const size_t n = std::min<size_t>(data_, bytes.size() - at);
      data_ -= static_cast<uint32_t>(n);
      at += n;
    } else if (sameLines_ == 0) {
      beginLine(bytes[at++]);
    } else {
      beginRun(bytes[at++]);
    }
    if (data_ == 0 && left_ == 0 && sameLines_ > 0) endLine();
  }
  return at;
}

// Runs that end before the line and the bytes do, without a look at anything else: most do.
size_t PageLines::takeWholeRuns(std::span<const uint8_t> bytes) noexcept {
  constexpr uint32_t kMostUnits = 128;
  const uint64_t mostData = uint64_t{kMostUnits} * pixelBytes_;
  size_t at = 0;
  while (left_ > mostData && bytes.size() - at > mostData + 1 && bytes[at] != kClearToEnd) {
    const uint8_t code = bytes[at];
    const uint32_t units = code > kClearToEnd ? 257U - code : code + 1U;
    left_ -= units * pixelBytes_;
    at += 1 + (code > kClearToEnd ? units : 1) * size_t{pixelBytes_};
  }
  return at;
}

void PageLines::beginLine(uint8_t repeats) noexcept {
  sameLines_ = uint32_t{repeats} + 1;
  left_ = lineBytes_;
}

// A run that says more than the line still holds ends with the line.
void PageLines::beginRun(uint8_t code) noexcept {
  constexpr uint32_t kMostLiterals = 257;
  if (code == kClearToEnd || (code < kClearToEnd && left_ < pixelBytes_)) {
    left_ = 0;
  } else if (code > kClearToEnd) {
    data_ = static_cast<uint32_t>(
        std::min<uint64_t>(uint64_t{kMostLiterals - code} * pixelBytes_, left_));
    left_ -= data_;
  } else {
    left_ -= static_cast<uint32_t>(std::min<uint64_t>((uint64_t{code} + 1) * pixelBytes_, left_));
    data_ = pixelBytes_;
  }
}

void PageLines::endLine() noexcept {
  lines_ -= std::min<uint64_t>(sameLines_, lines_);
  sameLines_ = 0;
}

int PageLines::percent() const noexcept {
  constexpr uint64_t kWhole = 100;
  if (areComplete()) return kWhole;
  const uint64_t lines = compressed_ ? allLines_ - lines_ : passed_ / lineBytes_;
  return static_cast<int>(lines * kWhole / allLines_);
}

}  // namespace velka
