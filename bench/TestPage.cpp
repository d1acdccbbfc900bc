#include "TestPage.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace velka::bench {
namespace {

constexpr unsigned kPixelBytes = 3;
constexpr uint8_t kBlack[3] = {20, 20, 20};
constexpr uint8_t kRed[3] = {230, 10, 20};

constexpr std::string_view kNames[] = {"text", "receipt", "photo", "camera", "white"};

unsigned dots(double inches, unsigned dpi) noexcept {
  return static_cast<unsigned>(std::lround(inches * dpi));
}

// Whether a place of a glyph of 5 x 7 cells has ink: about half of them.
bool cellHasInk(unsigned line, unsigned glyph, unsigned cellX, unsigned cellY) {
  std::minstd_rand random(1 + line * 7919 + glyph * 104729);
  random.discard(1 + cellY * 5 + cellX);
  return (random() >> 8U) % 100 < 45;
}

uint8_t softer(uint8_t value) noexcept {
  return static_cast<uint8_t>(255 - (255 - value) / 2);
}

uint8_t wave(double at, double grain) noexcept {
  return static_cast<uint8_t>(std::clamp(128 + 110 * std::sin(at) + grain, 0.0, 255.0));
}

}  // namespace

std::string_view nameOf(Kind kind) noexcept {
  return kNames[static_cast<size_t>(kind)];
}

std::optional<Kind> kindOf(std::string_view name) noexcept {
  for (const Kind kind : kKinds)
    if (nameOf(kind) == name) return kind;
  return std::nullopt;
}

Format a4(unsigned xdpi, unsigned ydpi) noexcept {
  return {dots(210 / 25.4, xdpi), dots(297 / 25.4, ydpi), xdpi, ydpi};
}

Format roll(unsigned millimetres) noexcept {
  return {dots(80 / 25.4, 360), dots(millimetres / 25.4, 360), 360, 360};
}

TestPage::TestPage(Kind kind, const Format& format)
    : kind_(kind),
      format_(format),
      row_(size_t{format.width} * kPixelBytes, 255),
      camera_(format.xdpi, format.ydpi) {}

std::span<const uint8_t> TestPage::row(unsigned y) {
  if (kind_ == Kind::Photo) {
    drawPhoto(y);
  } else if (kind_ == Kind::Camera) {
    camera_.draw(y, row_);
  } else if (kind_ != Kind::White) {
    std::ranges::fill(row_, uint8_t{255});
    drawText(y);
  }
  return row_;
}

void TestPage::fill(unsigned from, unsigned to, const uint8_t (&colour)[3]) {
  for (unsigned x = from; x < std::min(to, format_.width); ++x)
    std::copy_n(colour, kPixelBytes, row_.data() + size_t{x} * kPixelBytes);
}

void TestPage::drawText(unsigned y) {
  const unsigned pitch = dots(0.19, format_.ydpi);
  const unsigned line = y / pitch;
  const unsigned cellHeight = std::max(1U, pitch / 10);
  const unsigned cellY = (y % pitch) / cellHeight;
  const bool red = kind_ == Kind::Receipt && line % 5 == 4;
  const unsigned cell = std::max(1U, format_.xdpi / 72);
  if (kind_ == Kind::Receipt && line % 20 == 7) return fill(8 * cell, 60 * cell, kRed);
  if (cellY >= 7 || line % 9 == 8) return;
  const uint8_t(&ink)[3] = red ? kRed : kBlack;
  const uint8_t edge[3] = {softer(ink[0]), softer(ink[1]), softer(ink[2])};
  // Seven cells a glyph, margins of half an inch.
  const unsigned margin = format_.xdpi / 2;
  for (unsigned x = margin; x + margin < format_.width; x += cell) {
    const unsigned column = (x - margin) / cell;
    if (column % 7 >= 5 || column / 7 % 8 == 7) continue;
    if (!cellHasInk(line, column / 7, column % 7, cellY)) continue;
    fill(x, x + cell, ink);
    if (x > margin) fill(x - 1, x, edge);
    fill(x + cell, x + cell + 1, edge);
  }
}

void TestPage::drawPhoto(unsigned y) {
  std::minstd_rand random(y + 1);
  const double down = static_cast<double>(y) / format_.ydpi;
  for (unsigned x = 0; x < format_.width; ++x) {
    const double across = static_cast<double>(x) / format_.xdpi;
    const double grain = static_cast<double>((random() >> 8U) % 17) - 8;
    uint8_t* pixel = row_.data() + size_t{x} * kPixelBytes;
    pixel[0] = wave(across + 0.7 * down, grain);
    pixel[1] = wave(1.3 * across - down, grain);
    pixel[2] = wave(0.4 * across * down, -grain);
  }
}

}  // namespace velka::bench
