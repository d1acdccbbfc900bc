// Raster streams of any bytes on their way past the watching filter: pages end where libcups,
// which the printing filter reads by, has them end.
#include <algorithm>
#include <cstring>

#include "HeaderCheck.h"
#include "HeaderFields.h"
#include "Input.h"
#include "JobWatch.h"
#include "RasterStream.h"

namespace {

using namespace velka;
using namespace velka::fuzz;
using Stream = std::span<const uint8_t>;

// Beyond these libcups would be asked for more memory, or time, than a round may take.
constexpr uint32_t kMostLine = 1U << 12U;
constexpr uint32_t kMostLines = 1U << 8U;
constexpr uint32_t kMostColours = 16;

bool isSmall(const cups_page_header2_t& header) {
  return header.cupsBytesPerLine <= kMostLine && header.cupsHeight <= kMostLines &&
         header.cupsNumColors <= kMostColours;
}

struct Source {
  Stream bytes;
  size_t at = 0;
};

ssize_t readSource(void* context, unsigned char* buffer, size_t length) {
  auto& from = *static_cast<Source*>(context);
  const size_t n = std::min(length, from.bytes.size() - from.at);
  if (n > 0) std::memcpy(buffer, from.bytes.data() + from.at, n);
  from.at += n;
  return static_cast<ssize_t>(n);
}

bool readLines(cups_raster_t* raster, const cups_page_header2_t& header) {
  std::vector<uint8_t> line(header.cupsBytesPerLine);
  const bool planar = enumBits(header.cupsColorOrder) == CUPS_ORDER_PLANAR;
  const uint32_t lines = header.cupsHeight * (planar ? header.cupsNumColors : 1);
  for (uint32_t row = 0; row < lines; ++row)
    if (cupsRasterReadPixels(raster, line.data(), header.cupsBytesPerLine) == 0) return false;
  return true;
}

// Pages that libcups reads to their last line, up to one that is too large for a round.
size_t pagesByCups(Stream stream) {
  Source source{stream};
  cups_raster_t* raster = cupsRasterOpenIO(readSource, &source, CUPS_RASTER_READ);
  if (raster == nullptr) return 0;
  size_t pages = 0;
  cups_page_header2_t header = {};
  while (cupsRasterReadHeader2(raster, &header) != 0 && isSmall(header) &&
         readLines(raster, header))
    ++pages;
  cupsRasterClose(raster);
  return pages;
}

void judge(const cups_page_header2_t& header, uint64_t page) {
  for (const bool first : {true, false}) {
    const Trouble trouble = headerTrouble(header, first, uint64_t{1} << 30U);
    require(troubleText(trouble, header, page).empty() == (trouble == Trouble::None));
    require(stateReason(trouble).empty() == (trouble == Trouble::None));
  }
  const Copies copies = copiesOf(header, false);
  require(copies.count >= 1 && (copies.count > 1 || !copies.collated));
}

// In pieces, and what is not compressed sometimes unseen. Whether the page is whole.
bool followLines(PageLines& lines, Stream stream, size_t& at, Input& pieces) {
  int before = 0;
  while (!lines.areComplete() && at < stream.size()) {
    const size_t most = std::min(stream.size() - at, 1 + static_cast<size_t>(pieces.below(999)));
    const uint64_t plain = lines.plainBytes();
    size_t taken = 0;
    if (plain > 0 && pieces.below(2) == 1) {
      taken = std::min<size_t>(most, plain);
      lines.skip(taken);
    } else {
      taken = lines.take(stream.subspan(at, most));
    }
    require(taken > 0 && taken <= most && (taken == most || lines.areComplete()));
    require(lines.percent() >= before && (lines.percent() == 100) == lines.areComplete());
    before = lines.percent();
    at += taken;
  }
  return lines.areComplete();
}

size_t pagesFollowed(Stream stream, Input& pieces) {
  RasterSync sync = {};
  if (stream.size() < sync.size()) return 0;
  std::copy_n(stream.begin(), sync.size(), sync.begin());
  const auto format = rasterFormat(sync);
  size_t pages = 0;
  size_t at = sync.size();
  while (format && stream.size() - at >= format->headerBytes) {
    const auto header = pageHeader(*format, stream.subspan(at, format->headerBytes));
    if (!header) break;
    judge(*header, pages + 1);
    if (!isSmall(*header)) break;
    at += format->headerBytes;
    PageLines lines(*format, *header);
    if (!followLines(lines, stream, at, pieces)) break;
    ++pages;
  }
  return pages;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Stream all(data, size);
  const Stream stream = all.subspan(std::min<size_t>(size, 8));
  Input pieces(data, size - stream.size());
  const size_t followed = pagesFollowed(stream, pieces);
  // The one kind that libcups knows besides is Apple's, which no queue of ours is given.
  RasterSync sync = {};
  if (stream.size() >= sync.size()) std::copy_n(stream.begin(), sync.size(), sync.begin());
  if (rasterFormat(sync)) require(followed == pagesByCups(stream));
  return 0;
}
