// The processor's tone tables and the colour operations beside them.
#include "LevelsTable.h"
#include "LightTable.h"
#include "OrloProcesser.h"
#include "Separation.h"

namespace {

constexpr int kAllChannels = 3;
constexpr COLORLEVELSITEM kNeutral{1.0F, 0, 255, 0, 255};

bool isIndex(int index) noexcept {
  return index == 1 || index == 2;
}
bool isChannel(int channel) noexcept {
  return channel >= 0 && channel <= kAllChannels;
}
int firstTable(int channel) noexcept {
  return channel == kAllChannels ? 0 : channel;
}

}  // namespace

void COrloProcesser::SetLightTable(int brightness, int contrast, int index) noexcept {
  if (!isIndex(index)) return;
  uint16_t table[256];
  velka::fillLightTable(brightness, contrast, table);
  for (int v = 0; v < 256; ++v) m_LightTable[index][v] = static_cast<uint8_t>(table[v]);
}

void COrloProcesser::SetColorLevelsData(COLORLEVELSITEM* item, int channel, int index) noexcept {
  if (item == nullptr || !isChannel(channel) || !isIndex(index)) return;
  const COLORLEVELSITEM wanted = *item;
  InitColorLevelsData(channel, index);
  m_ColorLevels[index].items[channel] = wanted;
  InitColorLevelsTable(channel, index);
}

void COrloProcesser::InitColorLevelsTable(int channel, int index) noexcept {
  if (!isChannel(channel) || !isIndex(index)) return;
  ORLOLEVELSSET& set = m_ColorLevels[index];
  for (int table = firstTable(channel); table <= channel; ++table) {
    velka::applyLevels(set.items[channel], set.tables[table]);
    set.ready[table] = true;
  }
}

void COrloProcesser::InitColorLevelsData(int channel, int index) noexcept {
  if (!isChannel(channel) || !isIndex(index)) return;
  ORLOLEVELSSET& set = m_ColorLevels[index];
  for (int table = firstTable(channel); table <= channel; ++table) {
    velka::fillIdentity(set.tables[table]);
    set.ready[table] = false;
  }
  set.items[channel] = kNeutral;
}

void COrloProcesser::GetColorLevelsData(tagRGBQUAD in, tagRGBQUAD* out, int index) noexcept {
  if (out == nullptr || !isIndex(index)) return;
  const ORLOLEVELSSET& set = m_ColorLevels[index];
  if (!set.ready[0] || !set.ready[1]) return;
  out->rgbRed = set.tables[0][in.rgbRed];
  out->rgbGreen = set.tables[1][in.rgbGreen];
  out->rgbBlue = set.tables[2][in.rgbBlue];
}

int COrloProcesser::Light(unsigned char& r, unsigned char& g, unsigned char& b,
                          int index) noexcept {
  const bool black = (r | g | b) == 0;
  const bool white = (r & g & b) == 255;
  if (!isIndex(index) || black || white) return 1;
  r = m_LightTable[index][r];
  g = m_LightTable[index][g];
  b = m_LightTable[index][b];
  return 1;
}

bool COrloProcesser::IsColorBelongRange(tagRGBQUAD colour, tagRGBQUAD low,
                                        tagRGBQUAD high) noexcept {
  return velka::colourInRange(colour, low, high);
}

bool COrloProcesser::RotateImg(unsigned char* src, int64_t width, int64_t height,
                               unsigned char** dst, int64_t* dstSize, int64_t* dstWidth,
                               int64_t* dstHeight, int bitCount, int rotation) noexcept {
  return CBmpProcessing().RotateImg(src, width, height, dst, dstSize, dstWidth, dstHeight, bitCount,
                                    rotation);
}
