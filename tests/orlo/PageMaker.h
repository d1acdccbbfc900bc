// Pages for the tests: planes made by hand or at random, and the processor that
// prints them.
#pragma once

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "OrloProcesser.h"

namespace velka::orlotest {

enum class Feed : uint8_t { Front = 1, Back = 2 };

struct Resolution {
  int horizontal;
  int vertical;
};
/// All pairs of resolutions that print, each with its mode byte.
struct ModeRow {
  Resolution dpi;
  uint8_t mode;
};
const std::vector<ModeRow>& allModes();

inline int passesAt(int verticalDpi) {
  return verticalDpi == 360 ? 2 : 1;
}

/// A byte a pixel: 0 dot, 255 none.
struct Plane {
  std::vector<uint8_t> bytes;
  int left = -1;
  int top = -1;
  int right = -1;
  int bottom = -1;
};

/// A page of two halftoned planes. put() keeps the boxes.
struct DotPage {
  DotPage(int w, int h);
  int width;
  int height;
  Plane black;
  Plane red;

  void putBlack(int x, int y) { put(black, x, y); }
  void putRed(int x, int y) { put(red, x, y); }
  [[nodiscard]] bool isBlack(int64_t x, int64_t y) const { return isDot(black, x, y); }
  [[nodiscard]] bool isRed(int64_t x, int64_t y) const { return isDot(red, x, y); }

 private:
  void put(Plane& plane, int x, int y) const;
  [[nodiscard]] bool isDot(const Plane& plane, int64_t x, int64_t y) const;
};

/// Dots at random: about `perMille` of a page's rows get a few each. Rows that no
/// head reaches at the top of a page in this feed stay free.
DotPage randomPage(std::mt19937& random, int width, int height, int perMille, Feed feed,
                   int verticalDpi);

/// Puts the planes of a page into a processor as if they had been halftoned there.
void load(COrloProcesser& processor, const DotPage& page);

/// The commands that the encoder for a feed makes of a page.
std::vector<uint8_t> encode(const DotPage& page, Feed feed, bool split, Resolution dpi);

/// The commands collected so far.
std::vector<uint8_t> commandsOf(const COrloProcesser& processor);

// Expected bytes, from the values that they carry.
using Bytes = std::vector<uint8_t>;
Bytes operator+(Bytes a, const Bytes& b);
/// Unit and paper move of `units` / 360 inch.
Bytes moveY(int units);
/// Unit and head move to `position` / 60 inch.
Bytes moveX(int position);
/// A block of whole columns.
Bytes block(uint8_t mode, const std::vector<Bytes>& columns);
/// `column`, and blank columns up to `count` in all.
std::vector<Bytes> padded(std::vector<Bytes> columns, size_t count);
inline const Bytes kBlank = {0, 0, 0};         // a column
inline const Bytes kFirstSlot = {0x80, 0, 0};  // a column's first dot
inline const Bytes kColourMode3 = {0x1B, 0x72, 0x02};

}  // namespace velka::orlotest
