// One page of the Orlo model, from the bitmap to the hand-over of its commands.
#include "OrloProcesser.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "CheckedMath.h"
#include "GrowingBuffer.h"
#include "Halftone.h"
#include "OrloSeparation.h"
#include "PageMemory.h"

namespace {

constexpr int kNoInkOnPage = 0;
constexpr int kHandedOver = 0;
constexpr int kNewBufferOrTooSmall = 1;
constexpr int kNullPointer = 2;
constexpr int kNoCommands = 3;

// A plane that is there in the right size stays as it is.
bool providePlane(velka::OrloPlane& plane, uint32_t size) noexcept {
  if (plane.data != nullptr && plane.size == size) return true;
  std::free(plane.data);
  plane = {};
  plane.data = velka::pageBytes(size);
  if (plane.data == nullptr) return false;
  plane.size = size;
  return true;
}

}  // namespace

COrloProcesser::COrloProcesser() noexcept {
  for (const int index : {1, 2}) InitColorLevelsData(3, index);
}

COrloProcesser::~COrloProcesser() {
  dropCommands();
  for (const velka::OrloPlane* plane : {&m_ImgBuf, &m_BlackBuf, &m_RedBuf}) std::free(plane->data);
}

void COrloProcesser::EnableFaceDet(bool enable) noexcept {
  m_bFaceDet = enable;
}

void COrloProcesser::SetColorCFG(_COLORCFG_ORLO config) noexcept {
  m_OutputColorType = config.OutputColorType;
  m_ColorRangeUseFor = config.ColorRangeUseFor;
  m_minColorOffset = config.minColorOffset;
  m_maxColorOffset = config.maxColorOffset;
  m_solidColor = config.solidColor;
  m_SplitBlackRed = config.SplitBlackRed;
  m_sSpare4 = config.sSpare4;
  m_sSpare5 = config.sSpare5;
  m_sSpare6 = config.sSpare6;
  m_sSpare7 = config.sSpare7;
  m_BrightnessRed = config.BrightnessRed;
  m_ContrastRed = config.ContrastRed;
  m_LevelsRed = config.LevelsRed;
  m_sDitherRed = config.sDitherRed;
  m_BrightnessBlack = config.BrightnessBlack;
  m_ContrastBlack = config.ContrastBlack;
  m_LevelsBlack = config.LevelsBlack;
  m_sDitherBlack = config.sDitherBlack;
}

int COrloProcesser::GetOrloPrintCmd(const unsigned char* bitmap, unsigned int bitmapSize, int width,
                                    int height, unsigned char** output, unsigned int capacity,
                                    unsigned int* outputLength, const wchar_t* /*name*/,
                                    int horizontalDpi, int verticalDpi, int feedMode) noexcept {
  if (bitmap == nullptr || output == nullptr || outputLength == nullptr) return kNullPointer;
  if (width <= 0 || height <= 0) return kNoInkOnPage;
  if (!MakePlanes(bitmap, bitmapSize, width, height, verticalDpi, feedMode)) {
    *outputLength = 0;
    return kNoCommands;
  }
  if (!m_BlackBuf.hasData && !m_RedBuf.hasData) return kNoInkOnPage;
  const bool encoded =
      Encode2EscpSml(output, capacity, outputLength, horizontalDpi, verticalDpi, feedMode) != 0;
  // A page of ink that the model can print fails for want of memory only.
  if (!encoded && canPrint(horizontalDpi, verticalDpi, feedMode))
    m_Loss = m_pCmdBuf == nullptr ? velka::PageLoss::Commands : velka::PageLoss::Rest;
  // What counts is the command buffer, not the encoder's opinion of it.
  return handOver(output, capacity, outputLength);
}

bool COrloProcesser::MakePlanes(const unsigned char* bitmap, unsigned int bitmapSize, int width,
                                int height, int verticalDpi, int feedMode) noexcept {
  if (bitmap == nullptr || width <= 0 || height <= 0) return false;
  m_PageWidth = width;
  m_PageHeight = height;
  const bool made = allocatePlanes() && separatePage(bitmap, bitmapSize, verticalDpi, feedMode);
  m_Loss = made ? velka::PageLoss::None : velka::PageLoss::Planes;
  return made;
}

bool COrloProcesser::allocatePlanes() noexcept {
  const auto size =
      velka::checkedMul32(static_cast<uint64_t>(m_PageWidth), static_cast<uint64_t>(m_PageHeight));
  return size && providePlane(m_BlackBuf, *size) && providePlane(m_RedBuf, *size);
}

void COrloProcesser::prepareTone() noexcept {
  const auto neutral = [](int16_t levels) {
    return COLORLEVELSITEM{static_cast<float>(levels) / 100.0F, 0, 255, 0, 255};
  };
  COLORLEVELSITEM red = neutral(m_LevelsRed);
  SetLightTable(m_BrightnessRed, m_ContrastRed, 1);
  SetColorLevelsData(&red, 3, 1);
  COLORLEVELSITEM black = neutral(m_LevelsBlack);
  SetLightTable(m_BrightnessBlack, m_ContrastBlack, 2);
  SetColorLevelsData(&black, 3, 2);
}

bool COrloProcesser::separatePage(const unsigned char* bitmap, unsigned int bitmapSize,
                                  int verticalDpi, int feedMode) noexcept {
  velka::MallocBytes discarded = velka::zeroedBytes(static_cast<size_t>(m_PageWidth));
  if (discarded == nullptr) return false;
  prepareTone();
  const velka::ColourRouting routing = {m_OutputColorType, m_ColorRangeUseFor, m_minColorOffset,
                                        m_maxColorOffset, m_solidColor};
  const velka::InkRules rules(routing,
                              velka::InkTone{m_BrightnessBlack, m_ContrastBlack, m_LevelsBlack},
                              velka::InkTone{m_BrightnessRed, m_ContrastRed, m_LevelsRed});
  const velka::OrloBitmap page = {
      {bitmap, bitmapSize}, m_PageWidth, m_PageHeight, m_WhiteRows, m_LastRowCounts};
  const auto heads = velka::headDistance(verticalDpi, feedMode);
  if (velka::classPage(page, rules, m_OutputColorType, heads,
                       {m_BlackBuf, m_RedBuf, discarded.get()}))
    m_RowWidth = static_cast<uint64_t>(m_PageWidth);
  halftone(m_BlackBuf, m_sDitherBlack);
  halftone(m_RedBuf, m_sDitherRed);
  return true;
}

void COrloProcesser::halftone(velka::OrloPlane& plane, int mode) noexcept {
  if (!plane.hasData) return;
  const auto width = static_cast<unsigned int>(m_PageWidth);
  const int64_t rows = plane.filledRows(m_PageWidth);
  plane.fillTo(static_cast<uint64_t>(rows * m_PageWidth));
  Dither(mode, plane.data, plane.data, static_cast<unsigned int>(rows), width, width, 0, 0, 128);
}

int COrloProcesser::handOver(unsigned char** output, unsigned int capacity,
                             unsigned int* outputLength) noexcept {
  *outputLength = m_pCmdBuf == nullptr ? 0 : m_dwCmdLen;
  if (m_pCmdBuf == nullptr) return kNoCommands;
  if (*output == nullptr) {
    // The buffer has exactly the commands' length, so it can go as it is.
    *output = std::exchange(m_pCmdBuf, nullptr);
    m_dwCmdLen = 0;
    return kNewBufferOrTooSmall;
  }
  if (capacity < m_dwCmdLen) return kNewBufferOrTooSmall;
  std::memset(*output, 0, capacity);
  std::memcpy(*output, m_pCmdBuf, m_dwCmdLen);
  dropCommands();
  return kHandedOver;
}

void COrloProcesser::dropCommands() noexcept {
  std::free(m_pCmdBuf);
  m_pCmdBuf = nullptr;
  m_dwCmdLen = 0;
}

void COrloProcesser::addPixel(velka::OrloPlane& plane, uint8_t value, tagPOINT point,
                              uint32_t rowWidth) noexcept {
  if (plane.data == nullptr || point.x < 0 || point.y < 0) return;
  const uint64_t at = static_cast<uint64_t>(point.y) * rowWidth + static_cast<uint64_t>(point.x);
  if (at >= plane.size) return;
  plane.fillTo(at + 1);
  plane.data[at] = value;
  plane.widen(point.x, point.x, point.y);
  m_RowWidth = rowWidth;
}

void COrloProcesser::AddData2BlackBuf(uint8_t value, tagPOINT point, uint32_t rowWidth) noexcept {
  addPixel(m_BlackBuf, value, point, rowWidth);
}

void COrloProcesser::AddData2RedBuf(uint8_t value, tagPOINT point, uint32_t rowWidth) noexcept {
  addPixel(m_RedBuf, value, point, rowWidth);
}

void COrloProcesser::AddData2ImgBuf(uint8_t value, tagPOINT point, uint32_t rowWidth) noexcept {
  addPixel(m_ImgBuf, value, point, rowWidth);
}

int COrloProcesser::Dither(int mode, unsigned char* in, unsigned char* out, unsigned int rows,
                           unsigned int width, unsigned int stride, unsigned int /*unused*/,
                           short dotFactor, short threshold) noexcept {
  return velka::dither(mode, in, out, rows, width, stride, dotFactor, threshold);
}
