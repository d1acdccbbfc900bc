#include "BmpProcessing.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "LevelsTable.h"
#include "LightTable.h"
#include "PageMemory.h"
#include "Rotation.h"

namespace {

constexpr int kAllChannels = 3;
constexpr COLORLEVELSITEM kNeutral{1.0F, 0, 255, 0, 255};

struct Free {
  void operator()(unsigned char* p) const { std::free(p); }
};

bool isChannel(int index) {
  return index >= 0 && index <= kAllChannels;
}

}  // namespace

CBmpProcessing::CBmpProcessing() noexcept
    : m_Levels{kNeutral, kNeutral, kNeutral, kNeutral},
      m_LevelsTable{},
      m_bLevelsReady{},
      m_LightTable{} {
  for (auto& row : m_LevelsTable) {
    velka::fillIdentity(row);
  }
  velka::fillIdentity(m_LightTable);
}

void CBmpProcessing::SetColorLevelsData(COLORLEVELSITEM* item, int index) noexcept {
  if (item == nullptr || !isChannel(index)) {
    return;
  }
  const COLORLEVELSITEM wanted = *item;
  InitColorLevelsData(index);
  m_Levels[index] = wanted;
  InitColorLevelsTable(index);
}

void CBmpProcessing::InitColorLevelsTable(int index) noexcept {
  if (!isChannel(index)) {
    return;
  }
  const bool all = index == kAllChannels;
  for (int row = all ? 0 : index; row < (all ? kAllChannels : index + 1); ++row) {
    velka::applyLevels(m_Levels[index], m_LevelsTable[row]);
    m_bLevelsReady[row] = 1;
  }
  m_bLevelsReady[index] = 1;
}

void CBmpProcessing::InitColorLevelsData(int index) noexcept {
  if (!isChannel(index)) {
    return;
  }
  const bool all = index == kAllChannels;
  for (int row = all ? 0 : index; row <= index; ++row) {
    velka::fillIdentity(m_LevelsTable[row]);
    m_bLevelsReady[row] = 0;
  }
  m_Levels[index] = kNeutral;
}

void CBmpProcessing::GetColorLevelsData(tagRGBQUAD in, tagRGBQUAD* out) noexcept {
  if (out == nullptr || m_bLevelsReady[0] == 0 || m_bLevelsReady[1] == 0) {
    return;
  }
  out->rgbRed = m_LevelsTable[0][in.rgbRed];
  out->rgbGreen = m_LevelsTable[1][in.rgbGreen];
  out->rgbBlue = m_LevelsTable[2][in.rgbBlue];
}

void CBmpProcessing::SetLightTable(int bright, int contrast) noexcept {
  velka::fillLightTable(bright, contrast, m_LightTable);
}

int CBmpProcessing::Light(unsigned char& r, unsigned char& g, unsigned char& b, int /*unused*/,
                          int /*unused*/) noexcept {
  velka::applyLight(m_LightTable, r, g, b);
  return 1;
}

bool CBmpProcessing::RotateImg(unsigned char* src, int64_t width, int64_t height,
                               unsigned char** dst, int64_t* dstSize, int64_t* dstWidth,
                               int64_t* dstHeight, int bitCount, int rotation) noexcept {
  if (src == nullptr || dst == nullptr || dstSize == nullptr || dstWidth == nullptr ||
      dstHeight == nullptr || bitCount != 24) {
    return false;
  }
  const bool quarter = rotation == 1 || rotation == 3;
  const auto from = velka::bitmapShape(width, height);
  const auto to = quarter ? velka::bitmapShape(height, width) : from;
  if (!from || !to) {
    return false;
  }
  const auto size = static_cast<size_t>(to->size);
  std::unique_ptr<unsigned char, Free> turned(velka::pageBytes(size));
  if (!turned) {
    return false;
  }
  velka::rotateBitmap(src, *from, turned.get(), *to, rotation);
  if (*dst == nullptr) {
    *dst = turned.release();
  } else {
    std::memcpy(*dst, turned.get(), size);
  }
  *dstSize = to->size;
  *dstWidth = to->width;
  *dstHeight = to->height;
  return true;
}
