// Bands of ink planes to printer commands: blocks, positioning, split pages.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "BlockPacking.h"
#include "CheckedMath.h"
#include "CommandBuffer.h"
#include "CommandBuilders.h"
#include "DeviceHandle.h"
#include "ESCPSML.h"
#include "StandardOutput.h"

namespace {

constexpr int kBlack = 1;
constexpr int kRed = 2;

// Columns of 1/60 inch at a divisor; at least one below 60 dpi. No band has as many as
// the limit, so a step beyond it is as good.
uint64_t horizontalStep(float xDivisor) noexcept {
  constexpr float kMost = 0x1p30F;
  return static_cast<uint64_t>(std::max(1, velka::truncateToInt32(std::min(xDivisor, kMost))));
}

int passesPerBand(short ydpi) noexcept {
  return ydpi == 360 ? 2 : 1;
}

float xDivisorOf(const _OEMPDEV& pdev) noexcept {
  return static_cast<float>(pdev.devModeOut.dmPrintQuality) / 60.0F;
}

bool isSplit(const _DEVOBJ& devobj) noexcept {
  return devobj.pOemDev->SplitBlackRed == 1;
}

// The page's bands, a copy in tree order.
struct BandList {
  std::unique_ptr<_RECTL[], velka::FreeDeleter> rects;
  size_t count = 0;

  explicit BandList(CRectTree& tree) noexcept
      : rects(static_cast<_RECTL*>(std::calloc(std::max(tree.count, 1UL), sizeof(_RECTL)))) {
    unsigned long index = 0;
    if (rects != nullptr) tree.travel(tree.root, rects.get(), &index);
    count = index;
  }
  [[nodiscard]] std::span<_RECTL> all() const noexcept { return {rects.get(), count}; }
};

// The rectangles at the start of `rects` that share a top.
std::span<_RECTL> firstBand(std::span<_RECTL> rects) noexcept {
  const auto end = std::ranges::find_if(
      rects, [top = rects.front().top](const _RECTL& rect) { return rect.top != top; });
  return rects.first(static_cast<size_t>(end - rects.begin()));
}

// Takes the bands above the first red row off the tree and returns the top of
// the first one kept.
int32_t keepRedBands(_OEMPDEV& pdev, std::span<const _RECTL> bands) noexcept {
  const int32_t firstRed = pdev.lFirstRedRow;
  size_t kept = 0;
  for (; kept + 1 < bands.size(); ++kept) {
    const _RECTL& band = bands[kept];
    // Deliberate: a band above the red stays when its successor starts at or
    // below the first red row.
    if (band.bottom >= firstRed || bands[kept + 1].top >= firstRed) break;
    pdev.pRectTree->remove(static_cast<unsigned long>(band.top),
                           static_cast<unsigned long>(band.left));
  }
  pdev.dwRectCount = static_cast<uint32_t>(pdev.pRectTree->count);
  return bands[kept].top;
}

}  // namespace

// A page's commands, and the rows that the blocks of each colour have reached.
struct CESCPSML::PageStream : velka::CommandBuffer {
  unsigned int blackY = 0;
  unsigned int redY = 0;
};

bool CESCPSML::GetBlockDataCmd(unsigned short mode, unsigned short bytesPerColumn, _RECTL& area,
                               short colour, unsigned char*& command, unsigned int* commandLength,
                               unsigned int* leadingSkip, float xDivisor, int pass) noexcept {
  if ((colour != kBlack && colour != kRed) || commandLength == nullptr || leadingSkip == nullptr)
    return false;
  *commandLength = 0;
  const unsigned char* bytes = colour == kBlack ? m_pBlackBuf : m_pRedBuf;
  const size_t size = bytes == nullptr ? 0 : (colour == kBlack ? m_dwBlackSize : m_dwRedSize);
  const velka::InkPlane plane = {{bytes, size}, m_nPlaneStride, m_nPageHeight};
  const uint32_t columns = velka::columnCount(area);
  const size_t dataBytes = size_t{columns} * bytesPerColumn;
  if (dataBytes > UINT32_MAX - velka::kBlockHeaderBytes) return false;
  velka::MallocBytes block = velka::zeroedBytes(velka::kBlockHeaderBytes + dataBytes);
  if (block == nullptr) return false;

  const auto rows = velka::passRows(area, bytesPerColumn, pass);
  const auto range = velka::completeColumns(plane, area, rows);
  const std::span<uint8_t> data(block.get() + velka::kBlockHeaderBytes, dataBytes);
  velka::packColumns(plane, range, rows, bytesPerColumn, data);
  const auto extent = velka::trimBlock(data, static_cast<uint32_t>(range.end - range.first),
                                       columns, bytesPerColumn, horizontalStep(xDivisor));
  *leadingSkip = extent.leadingSkip;
  if (!extent.hasData) return true;

  const auto header = velka::blockHeader(colour - 1, mode, extent.columns);
  std::copy(header.begin(), header.end(), block.get());
  const size_t sentBytes = size_t{extent.columns} * bytesPerColumn;
  std::memmove(data.data(), data.data() + size_t{extent.leadingSkip} * bytesPerColumn, sentBytes);
  *commandLength = static_cast<unsigned int>(velka::kBlockHeaderBytes + sentBytes);
  if (command == nullptr) {
    command = block.release();
  } else {
    std::memcpy(command, block.get(), *commandLength);
  }
  return true;
}

int CESCPSML::EncodeBlockData(unsigned short mode, unsigned short bytesPerColumn, _RECTL& area,
                              _RECTL& /*unused*/, int colour, float xDivisor,
                              unsigned char** pageBuffer, unsigned int* pageLength,
                              unsigned int xOffset, unsigned int* writePosition,
                              unsigned int* currentY, short ydpi, int pass,
                              int yCorrection) noexcept {
  if (currentY == nullptr) return 0;
  unsigned char* command = nullptr;
  unsigned int commandLength = 0;
  unsigned int skip = 0;
  if (!GetBlockDataCmd(mode, bytesPerColumn, area, static_cast<short>(colour), command,
                       &commandLength, &skip, xDivisor, pass))
    return 0;
  const velka::MallocBytes block(command);
  int& started = colour == kRed ? m_nRedStarted : m_nBlackStarted;
  started = commandLength > 0 ? 1 : 0;
  if (started == 0) return 1;

  const velka::CommandSink sink = {pageBuffer, pageLength, writePosition};
  if (int64_t{*currentY} < area.top) {
    // Red that still stands at the top of the page takes the correction.
    const bool corrected = colour == kRed && *currentY == 0;
    const int64_t rows = int64_t{area.top} - *currentY - (corrected ? yCorrection : 0);
    if (!sink.moveY(ydpi, rows)) return 0;
    *currentY = static_cast<unsigned int>(area.top);
  }
  // A red band over a black one starts a row higher, which takes back the
  // interleave step at 360 dpi. Deliberate: at one pass a band as well.
  if (colour == kRed && m_nBlackStarted != 0 && pass == 0 && !sink.moveY(ydpi, -1)) return 0;
  const auto x = velka::low32(uint64_t{skip} + xOffset + static_cast<uint32_t>(area.left));
  if (!sink.moveToX(xDivisor, x)) return 0;
  return sink.append({block.get(), commandLength}) ? 1 : 0;
}

int CESCPSML::EncodeAndSend(_DEVOBJ* devobj, short second) noexcept {
  if (!velka::isComplete(devobj) || devobj->pOemPDEV->pRectTree == nullptr) return 0;
  const _OEMPDEV& pdev = *devobj->pOemPDEV;
  const auto mode = velka::standardBitImageMode(
      devobj->pOemDev->sHeadPins, pdev.devModeOut.dmYResolution, pdev.devModeOut.dmPrintQuality);
  if (!mode) return 0;
  const BandList bands(*pdev.pRectTree);
  if (bands.rects == nullptr) {
    m_Loss = second != 0 ? velka::PageLoss::Rest : velka::PageLoss::Bands;
    return 0;
  }
  const bool anyInk = m_nBlackFlag != 0 || m_nRedFlag != 0;
  if (bands.count == 0 || !anyInk) return 0;
  return sendPage(*devobj, *mode, bands.all(), second != 0) ? 1 : 0;
}

// From here on only memory can fail.
bool CESCPSML::sendPage(_DEVOBJ& devobj, velka::BitImageMode mode, std::span<_RECTL> bands,
                        bool redHalf) noexcept {
  using velka::PageLoss;
  const _OEMPDEV& pdev = *devobj.pOemPDEV;
  PageStream stream;
  m_Loss = redHalf ? PageLoss::Rest : PageLoss::Commands;
  // Deliberate: the red half of a split page starts with it again.
  if (pdev.lInitialYOffset != 0) {
    if (!stream.sink().moveY(pdev.devModeOut.dmYResolution, pdev.lInitialYOffset)) return false;
    stream.redY = static_cast<unsigned int>(pdev.lInitialYOffset);
  }
  if (!encodeBands(devobj, mode, bands, redHalf, stream)) return false;
  if (redHalf) {
    velka::writeToPrinter(stream.commands());
    return keepForCopies(devobj, stream);
  }
  const auto eject = velka::ejectMode(*devobj.pOemDev, pdev.dwCurPageNum);
  if (eject && !stream.sink().append(*eject)) return false;
  const unsigned int copiesBefore = m_dwCopyLen;
  const bool complete =
      isSplit(devobj) ? finishBlackHalf(devobj, bands, stream) : keepForCopies(devobj, stream);
  return finishPage(complete && endPage(devobj, stream), copiesBefore);
}

bool CESCPSML::encodeBands(const _DEVOBJ& devobj, velka::BitImageMode mode, std::span<_RECTL> bands,
                           bool redHalf, PageStream& stream) noexcept {
  const bool black = m_nBlackFlag != 0 && !redHalf;
  const bool red = m_nRedFlag != 0 && (redHalf || !isSplit(devobj));
  while (!bands.empty()) {
    const std::span<_RECTL> band = firstBand(bands);
    if (black) {
      const unsigned int before = stream.length();
      if (!encodeInk(devobj, mode, band, kBlack, stream)) return false;
      // Deliberate: red follows where black went, black never where red did.
      if (stream.length() > before) stream.redY = stream.blackY;
    }
    if (red && !encodeInk(devobj, mode, band, kRed, stream)) return false;
    bands = bands.subspan(band.size());
  }
  return true;
}

bool CESCPSML::encodeInk(const _DEVOBJ& devobj, velka::BitImageMode mode, std::span<_RECTL> band,
                         int colour, PageStream& stream) noexcept {
  const _OEMPDEV& pdev = *devobj.pOemPDEV;
  const short ydpi = pdev.devModeOut.dmYResolution;
  unsigned int& reached = colour == kBlack ? stream.blackY : stream.redY;
  const velka::CommandSink sink = stream.sink();
  const int passes = passesPerBand(ydpi);
  for (int pass = 0; pass < passes; ++pass) {
    const unsigned int before = stream.length();
    for (_RECTL& area : band) {
      if (EncodeBlockData(mode.mode, mode.bytesPerColumn, area, area, colour, xDivisorOf(pdev),
                          sink.buffer, sink.length, 0, sink.writePosition, &reached, ydpi, pass,
                          pdev.lYCorrection) == 0)
        return false;
    }
    // The odd rows of an interleaved band lie one row lower.
    const bool toOddRows = pass == 0 && passes == 2 && stream.length() > before;
    if (toOddRows && !stream.sink().moveY(ydpi, 1)) return false;
  }
  return true;
}

// Ends the black half of a split page: back to the first band that holds red,
// then the red half on the same page.
bool CESCPSML::finishBlackHalf(_DEVOBJ& devobj, std::span<const _RECTL> bands,
                               PageStream& stream) noexcept {
  _OEMPDEV& pdev = *devobj.pOemPDEV;
  const int32_t redTop = keepRedBands(pdev, bands);
  pdev.lYCorrection = redTop;
  const int64_t reverse = int64_t{stream.blackY} - redTop;
  if (!stream.sink().moveY(pdev.devModeOut.dmYResolution, -reverse)) return false;
  velka::writeToPrinter(stream.commands());
  m_Loss = velka::PageLoss::Rest;
  if (!keepForCopies(devobj, stream)) return false;
  stream.clear();
  return EncodeAndSend(&devobj, 1) != 0;
}
