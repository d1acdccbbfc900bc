#include "orlo/PageMaker.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace velka::orlotest {

const std::vector<ModeRow>& allModes() {
  static const std::vector<ModeRow> modes = {
      {{60, 180}, 0x20},  {{90, 180}, 0x26},  {{120, 180}, 0x21}, {{180, 180}, 0x27},
      {{360, 180}, 0x28}, {{360, 360}, 0x28}, {{60, 60}, 0x00},   {{80, 60}, 0x04},
      {{90, 60}, 0x06},   {{120, 60}, 0x01}};
  return modes;
}

DotPage::DotPage(int w, int h) : width(w), height(h) {
  const size_t size = static_cast<size_t>(w) * static_cast<size_t>(h);
  black.bytes.assign(size, 255);
  red.bytes.assign(size, 255);
}

void DotPage::put(Plane& plane, int x, int y) const {
  plane.bytes.at(static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) = 0;
  plane.left = plane.left < 0 ? x : std::min(plane.left, x);
  plane.top = plane.top < 0 ? y : std::min(plane.top, y);
  plane.right = std::max(plane.right, x);
  plane.bottom = std::max(plane.bottom, y);
}

bool DotPage::isDot(const Plane& plane, int64_t x, int64_t y) const {
  if (x < 0 || x >= width || y < 0 || y >= height) return false;
  return plane.bytes.at(static_cast<size_t>(y) * static_cast<size_t>(width) +
                        static_cast<size_t>(x)) == 0;
}

DotPage randomPage(std::mt19937& random, int width, int height, int perMille, Feed feed,
                   int verticalDpi) {
  DotPage page(width, height);
  const int k = passesAt(verticalDpi);
  const int blackFrom = feed == Feed::Back ? 16 * k : 0;
  const int redFrom = feed == Feed::Front ? 28 * k : 0;
  const auto below = [&](int limit) {
    return std::uniform_int_distribution<int>(0, limit - 1)(random);
  };
  for (int y = 0; y < height; ++y) {
    if (y >= blackFrom && below(1000) < perMille)
      for (int i = below(6); i >= 0; --i) page.putBlack(below(width), y);
    if (y >= redFrom && below(1000) < perMille)
      for (int i = below(6); i >= 0; --i) page.putRed(below(width), y);
  }
  return page;
}

namespace {

void loadPlane(OrloPlane& target, const Plane& plane) {
  std::free(target.data);
  target.data = static_cast<unsigned char*>(std::malloc(std::max<size_t>(plane.bytes.size(), 1)));
  std::memcpy(target.data, plane.bytes.data(), plane.bytes.size());
  target.size = static_cast<uint32_t>(plane.bytes.size());
  target.filled = target.size;
  target.hasData = plane.top >= 0;
  target.left = plane.left;
  target.top = plane.top;
  target.right = plane.right;
  target.bottom = plane.bottom;
}

}  // namespace

void load(COrloProcesser& processor, const DotPage& page) {
  processor.m_PageWidth = page.width;
  processor.m_PageHeight = page.height;
  loadPlane(processor.m_BlackBuf, page.black);
  loadPlane(processor.m_RedBuf, page.red);
}

Bytes commandsOf(const COrloProcesser& processor) {
  if (processor.m_pCmdBuf == nullptr) return {};
  return {processor.m_pCmdBuf, processor.m_pCmdBuf + processor.m_dwCmdLen};
}

Bytes encode(const DotPage& page, Feed feed, bool split, Resolution dpi) {
  COrloProcesser processor;
  load(processor, page);
  processor.m_SplitBlackRed = split ? 1 : 0;
  unsigned char* output = nullptr;
  unsigned int length = 0;
  processor.Encode2EscpSml(&output, 0, &length, dpi.horizontal, dpi.vertical,
                           static_cast<int>(feed));
  return commandsOf(processor);
}

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

Bytes moveY(int units) {
  const auto value = static_cast<uint16_t>(units);
  return {0x1B,
          0x28,
          0x55,
          0x01,
          0x00,
          0x0A,
          0x0D,
          0x1B,
          0x28,
          0x76,
          0x02,
          0x00,
          static_cast<uint8_t>(value & 0xFFU),
          static_cast<uint8_t>(value >> 8U)};
}

Bytes moveX(int position) {
  return {0x1B,
          0x28,
          0x55,
          0x01,
          0x00,
          0x3C,
          0x1B,
          0x24,
          static_cast<uint8_t>(position & 0xFF),
          static_cast<uint8_t>(position >> 8)};
}

Bytes block(uint8_t mode, const std::vector<Bytes>& columns) {
  Bytes bytes = {0x1B, 0x2A, mode, static_cast<uint8_t>(columns.size() & 0xFFU),
                 static_cast<uint8_t>(columns.size() >> 8U)};
  for (const Bytes& column : columns) bytes.insert(bytes.end(), column.begin(), column.end());
  return bytes;
}

std::vector<Bytes> padded(std::vector<Bytes> columns, size_t count) {
  columns.resize(count, Bytes{0, 0, 0});
  return columns;
}

}  // namespace velka::orlotest
