// A separated page made by hand, for the tests of packing and encoding.
#pragma once

#include "reference/ReferenceEncoder.h"
#include "reference/ReferenceOptions.h"

namespace velka::reference {

inline constexpr int black = 0;
inline constexpr int red = 1;
// A page of 24-row (or 48-row) bands, four columns wide unless said otherwise.
struct HandmadePage {
  explicit HandmadePage(int height, int bandHeight = 24, int width = 4) {
    planes.width = width;
    planes.height = height;
    const size_t size = static_cast<size_t>(width) * static_cast<size_t>(height);
    planes.black.assign(size, 255);
    planes.red.assign(size, 255);
    for (int top = 0; top < height; top += bandHeight) {
      planes.bands.push_back({0, top, width - 1, top + bandHeight - 1});
    }
    setting.options = defaultOptions();
    setting.printQuality = 180;
    setting.yResolution = 180;
  }

  void dot(int ink, int row, int column) {
    const size_t index =
        static_cast<size_t>(row) * static_cast<size_t>(planes.width) + static_cast<size_t>(column);
    (ink == black ? planes.black : planes.red).at(index) = 0;
    (ink == black ? planes.blackFlag : planes.redFlag) = true;
  }

  void inkRow(int ink, int row) {
    for (int column = 0; column < planes.width; ++column) {
      dot(ink, row, column);
    }
  }

  void resolution(int across, int down) {
    setting.printQuality = across;
    setting.yResolution = down;
  }

  Bytes encode() {
    Bytes out;
    succeeded = encodeAndSend(planes, setting, state, out);
    return out;
  }

  Block pack(int colour, size_t band = 0, int pass = 0) const {
    const auto mode =
        bitImageMode(setting.options.sHeadPins, setting.yResolution, setting.printQuality);
    return packBlock(planes, planes.bands.at(band), colour, *mode,
                     static_cast<float>(setting.printQuality) / 60.0F, pass);
  }

  Separation planes;
  PageSetting setting;
  GeneratorState state;
  bool succeeded = false;
};

}  // namespace velka::reference
