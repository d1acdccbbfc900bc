// Halftoning at every level.
#include "Halftone.h"
#include "levels/Levels.h"

namespace velka::testing {
namespace {

constexpr unsigned kLongRounds = 1000000;

struct Plane {
  Bytes bytes;
  unsigned rows;
  unsigned width;
  unsigned stride;
};

Plane randomPlane(std::mt19937& random, unsigned mostRows, unsigned mostWidth) {
  Plane plane;
  plane.rows = 1 + below(random, mostRows);
  plane.width = 1 + below(random, mostWidth);
  plane.stride = plane.width + below(random, 4);
  plane.bytes = content(random, size_t{plane.rows} * plane.stride, plane.stride);
  return plane;
}

struct Settings {
  int mode;
  short factor;
  short threshold;
};

/// The changed input, the dots, and the dots of the plane halftoned in place.
std::vector<Bytes> halftoned(const Plane& plane, const Settings& s) {
  Bytes in = plane.bytes;
  Bytes out(in.size(), 9);
  dither(s.mode, in.data(), out.data(), plane.rows, plane.width, plane.stride, s.factor,
         s.threshold);
  Bytes inPlace = plane.bytes;
  dither(s.mode, inPlace.data(), inPlace.data(), plane.rows, plane.width, plane.stride, s.factor,
         s.threshold);
  return {in, out, inPlace};
}

void expectSameDots(const Plane& plane, const Settings& s) {
  expectSame([&] { return halftoned(plane, s); },
             std::to_string(plane.width) + "/" + std::to_string(plane.stride) + "x" +
                 std::to_string(plane.rows) + " mode " + std::to_string(s.mode) + " factor " +
                 std::to_string(s.factor) + " threshold " + std::to_string(s.threshold));
}

void diffuseRandomPlanes(unsigned rounds) {
  std::mt19937 random(1);
  for (unsigned round = 0; round < rounds && !::testing::Test::HasFatalFailure(); ++round) {
    Settings s = {2, 0, static_cast<short>(static_cast<int>(below(random, 258)) - 1)};
    if (below(random, 3) == 0) s.threshold = 128;
    if (below(random, 8) == 0)
      s.factor = static_cast<short>(static_cast<int>(below(random, 111)) - 10);
    // Two groups of rows go together from 31 rows on, far from the edges of wide planes.
    const bool wide = below(random, 8) == 0;
    expectSameDots(randomPlane(random, wide ? 80 : 50, wide ? 400 : 90), s);
  }
}

TEST(Levels, RandomPlanesGetTheSameDots) {
  diffuseRandomPlanes(kRounds);
}

// The long form: a million planes.
TEST(Levels, DISABLED_AMillionRandomPlanesGetTheSameDots) {
  diffuseRandomPlanes(kLongRounds);
}

TEST(Levels, EveryValueAtEveryThresholdGetsTheSameDots) {
  constexpr int kStep = kColourStep == 1 ? 1 : 7;
  for (int threshold = -1; threshold <= 256 && !HasFatalFailure(); threshold += kStep) {
    for (unsigned value = 0; value < 256; ++value) {
      const Plane flat = {Bytes(34, static_cast<uint8_t>(value)), 17, 2, 2};
      expectSameDots(flat, {2, 0, static_cast<short>(threshold)});
    }
  }
}

TEST(Levels, EverySmallShapeGetsTheSameDots) {
  std::mt19937 random(2);
  for (unsigned rows = 1; rows <= 34; ++rows) {
    for (unsigned width = 1; width <= 50 && !HasFatalFailure(); ++width) {
      const Bytes bytes = content(random, size_t{rows} * width, width);
      expectSameDots({bytes, rows, width, width}, {2, 0, 128});
    }
  }
}

TEST(Levels, PlanesOfEveryWidthGetTheSameDots) {
  std::mt19937 random(8);
  for (unsigned width = 51; width <= 330 && !HasFatalFailure(); ++width) {
    const unsigned rows = 31 + below(random, 40);
    const Bytes bytes = content(random, size_t{rows} * width, width);
    expectSameDots({bytes, rows, width, width}, {2, 0, static_cast<short>(below(random, 255))});
  }
}

// Of a photograph in two inks, each plane holds noise where its ink is and paper where the
// other one is.
Bytes photographedPlane(std::mt19937& random, unsigned rows, unsigned width) {
  Bytes plane(size_t{rows} * width, 255);
  for (size_t y = 0; y < rows; ++y)
    for (size_t x = 0; x < width; ++x) {
      const size_t hue = (x / 3 + 2 * y) % 255 + below(random, 40);
      if (hue > 140) plane[y * width + x] = asPhotographed(random, static_cast<int>(x % 256), 9);
    }
  return plane;
}

TEST(Levels, PhotographsGetTheSameDotsAtEveryThreshold) {
  constexpr int kStep = kColourStep == 1 ? 1 : 51;
  std::mt19937 random(9);
  for (int threshold = 0; threshold <= 255 && !HasFatalFailure(); threshold += kStep) {
    const unsigned width = 300 + below(random, 40);
    expectSameDots({photographedPlane(random, 65, width), 65, width, width},
                   {2, 0, static_cast<short>(threshold)});
  }
}

TEST(Levels, WholePagesGetTheSameDots) {
  std::mt19937 random(3);
  for (int page = 0; page < 4; ++page) {
    const Bytes bytes = content(random, size_t{1488} * 500, 1488);
    expectSameDots({bytes, 500, 1488, 1488}, {2, 0, 128});
  }
}

TEST(Halftoning, InPlaceGivesTheDotsOfTwoPlanes) {
  std::mt19937 random(4);
  for (unsigned round = 0; round < kRounds && !HasFatalFailure(); ++round) {
    const Plane plane = randomPlane(random, 20, 120);
    const Settings s = {static_cast<int>(round % 8), static_cast<short>(below(random, 3)), 128};
    const auto dots = halftoned(plane, s);
    for (unsigned y = 0; y < plane.rows; ++y) {
      const auto row = static_cast<ptrdiff_t>(size_t{y} * plane.stride);
      ASSERT_TRUE(std::equal(dots[1].begin() + row, dots[1].begin() + row + plane.width,
                             dots[2].begin() + row))
          << "mode " << s.mode << " row " << y;
    }
  }
}

}  // namespace
}  // namespace velka::testing
