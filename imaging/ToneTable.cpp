#include "ToneTable.h"

#include "BmpProcessing.h"
#include "ByteMath.h"

namespace velka {
namespace {

CBmpProcessing compile(const InkTone& settings) {
  CBmpProcessing tables;
  // Without brightness and contrast this is the identity, so it need not be
  // left out.
  tables.SetLightTable(settings.brightness, settings.contrast);
  COLORLEVELSITEM item{static_cast<float>(settings.levels / 100.0), 0, 255, 0, 255};
  tables.SetColorLevelsData(&item, 3);
  return tables;
}

uint8_t grayOfUnlit(CBmpProcessing& tables, uint8_t level) {
  tagRGBQUAD toned{};
  tables.GetColorLevelsData({level, level, level, 0}, &toned);
  return grayOfRgb(toned.rgbRed, toned.rgbGreen, toned.rgbBlue);
}

}  // namespace

ToneTable::ToneTable(const InkTone& settings) : scale_(&GrayScale::instance()) {
  CBmpProcessing tables = compile(settings);
  const auto& [red, green, blue] = channelContributions();
  for (size_t v = 0; v < 256; ++v) {
    const uint8_t lit = lowByte(tables.m_LightTable[v]);
    parts_[0][v] = blue[tables.m_LevelsTable[2][lit]];
    parts_[1][v] = green[tables.m_LevelsTable[1][lit]];
    parts_[2][v] = red[tables.m_LevelsTable[0][lit]];
  }
  black_ = grayOfUnlit(tables, 0);
  white_ = grayOfUnlit(tables, 255);
}

}  // namespace velka
