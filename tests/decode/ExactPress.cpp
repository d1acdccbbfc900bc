#include "decode/ExactPress.h"

#include <algorithm>

#include "reference/ExpectedStream.h"

namespace velka::decodetest {
namespace {

using reference::ExpectedStream;

class ExactPress {
 public:
  ExactPress(const DotPlanes& planes, const HeadMode& mode)
      : planes_(planes), mode_(mode), passes_(mode.ydpi == 360 ? 2 : 1) {}

  std::vector<uint8_t> print() {
    stream_.start(planes_.height * 6 / mode_.ydpi);
    int printed = 0;  // rows above are on the paper
    while (printed < planes_.height) {
      if (planes_.isBlank(printed)) {
        ++printed;
        continue;
      }
      const int high = mode_.dots * passes_;
      const int top = std::max(0, std::min(printed, planes_.height - high));
      for (int pass = 0; pass < passes_; ++pass) {
        // The ink changes once a band, whatever its passes.
        strike(pass % 2, top, pass, printed);
        strike(1 - pass % 2, top, pass, printed);
      }
      printed = top + high;
    }
    return stream_.formFeed().end().bytes();
  }

 private:
  void strike(int ink, int top, int pass, int firstNew) {
    int left = planes_.width;
    int right = -1;
    for (int x = 0; x < planes_.width; ++x) {
      if (isBlankColumn(ink, x, top, pass, firstNew)) continue;
      left = std::min(left, x);
      right = x;
    }
    if (right < 0) return;
    // Whole steps of 1/60 inch that are whole columns, too.
    const int step = mode_.xdpi % 60 == 0 ? mode_.xdpi / 60 : mode_.xdpi == 90 ? 3 : 4;
    left -= left % step;
    std::vector<uint8_t> data;
    for (int x = left; x <= right; ++x) addColumn(ink, x, top, pass, firstNew, data);
    moveTo(top + pass);
    stream_.toX(left * 60 / mode_.xdpi).block(ink, mode_.code, right - left + 1, data);
  }

  [[nodiscard]] bool isDot(int ink, int x, int row, int firstNew) const {
    return row >= firstNew && row < planes_.height && planes_.at(ink, x, row);
  }

  [[nodiscard]] bool isBlankColumn(int ink, int x, int top, int pass, int firstNew) const {
    for (int dot = 0; dot < mode_.dots; ++dot)
      if (isDot(ink, x, top + pass + dot * passes_, firstNew)) return false;
    return true;
  }

  void addColumn(int ink, int x, int top, int pass, int firstNew, std::vector<uint8_t>& data) {
    for (int byte = 0; byte < mode_.dots / 8; ++byte) {
      unsigned bits = 0;
      for (int bit = 0; bit < 8; ++bit)
        if (isDot(ink, x, top + pass + (byte * 8 + bit) * passes_, firstNew))
          bits |= 0x80U >> static_cast<unsigned>(bit);
      data.push_back(static_cast<uint8_t>(bits));
    }
  }

  void moveTo(int row) {
    const int units = (row - reached_) * 360 / mode_.ydpi;
    if (units != 0) stream_.unit(10).down(units);
    reached_ = row;
  }

  const DotPlanes& planes_;
  HeadMode mode_;
  int passes_;
  int reached_ = 0;
  ExpectedStream stream_;
};

}  // namespace

bool DotPlanes::isBlank(int y) const {
  for (int x = 0; x < width; ++x)
    if (at(0, x, y) || at(1, x, y)) return false;
  return true;
}

std::vector<uint8_t> exactJob(const DotPlanes& planes, const HeadMode& mode) {
  return ExactPress(planes, mode).print();
}

}  // namespace velka::decodetest
