// Sweeps of both heads over planes at random: each dot is struck once, on its place, and
// none elsewhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "ExactSweep.h"
#include "exact/PlainPrinter.h"
#include "support/Sweep.h"

namespace velka::exacttest {
namespace {

struct Planes {
  int width;
  int height;
  std::vector<uint8_t> black;
  std::vector<uint8_t> red;

  Planes(int w, int h)
      : width(w),
        height(h),
        black(static_cast<size_t>(w) * static_cast<size_t>(h), 255),
        red(black) {}
  [[nodiscard]] DotPlane plane(int ink) const {
    return {ink == 0 ? black.data() : red.data(), width, height, height};
  }
  void dot(int ink, int row, int column) {
    (ink == 0 ? black : red)[static_cast<size_t>(row) * static_cast<size_t>(width) +
                             static_cast<size_t>(column)] = 0;
  }
};

// Patches, lines and single dots, so that there are gaps, edges and blanks.
Planes randomPlanes(std::mt19937& random, int width, int height) {
  Planes planes(width, height);
  const auto below = [&](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  for (int ink = 0; ink < 2; ++ink) {
    for (int patch = below(6); patch > 0; --patch) {
      const int top = below(height);
      const int left = below(width);
      const int bottom = std::min(height, top + 1 + below(60));
      const int right = std::min(width, left + 1 + below(80));
      const int density = 1 + below(4);
      for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x)
          if (below(density) == 0) planes.dot(ink, y, x);
    }
    for (int single = below(4); single > 0; --single) planes.dot(ink, below(height), below(width));
    if (below(4) == 0) planes.dot(ink, height - 1, width - 1);
  }
  return planes;
}

struct Stream {
  unsigned char* bytes = nullptr;
  unsigned int length = 0;
  unsigned int at = 0;
  Stream() = default;
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;
  ~Stream() { std::free(bytes); }
  [[nodiscard]] CommandSink sink() { return {&bytes, &length, &at}; }
};

struct Setting {
  ExactHead head;
  Pins pins;
  bool split;
};

std::map<Spot, int> wanted(const Planes& planes, const Setting& setting) {
  std::map<Spot, int> spots;
  const int passes = setting.head.passes();
  for (int ink = 0; ink < 2; ++ink) {
    const NozzleGroup& nozzles = ink == 0 ? setting.head.black : setting.head.red;
    for (int y = nozzles.firstSlot * passes; y < planes.height; ++y)
      for (int x = 0; x < planes.width; ++x)
        if (planes.plane(ink).row(y)[x] == 0)
          spots[{ink, int64_t{y} * 3600 / setting.head.ydpi,
                 int64_t{x} * 3600 / setting.head.xdpi}] = 1;
  }
  return spots;
}

PrintedPage print(const Planes& planes, const Setting& setting) {
  Stream stream;
  ExactSweep sweep(setting.head, planes.plane(0), planes.plane(1), 0, stream.sink());
  EXPECT_TRUE(sweep.prepare());
  if (setting.split) {
    EXPECT_TRUE(sweep.print({true, false}));
    EXPECT_TRUE(sweep.print({false, true}));
  } else {
    EXPECT_TRUE(sweep.print({true, true}));
  }
  const uint8_t feed = 0x0C;
  EXPECT_TRUE(stream.sink().append({&feed, 1}));
  PrintedJob job = printOut({stream.bytes, stream.length}, setting.pins);
  EXPECT_FALSE(job.fault) << *job.fault;
  EXPECT_EQ(job.pages.size(), 1U);
  return job.pages.empty() ? PrintedPage{} : std::move(job.pages[0]);
}

struct Dpi {
  int16_t x;
  int16_t y;
};
constexpr Dpi kDpis[] = {{60, 180},  {90, 180}, {120, 180}, {180, 180}, {360, 180},
                         {360, 360}, {60, 60},  {80, 60},   {90, 60},   {120, 60}};

std::optional<Setting> randomSetting(std::mt19937& random) {
  const Dpi dpi = kDpis[random() % std::size(kDpis)];
  const bool split = random() % 3 == 0;
  switch (random() % 4) {
    case 0:
      return Setting{*orloHead(kFrontFeedHead, dpi.x, dpi.y), Pins::OrloFront, split};
    case 1:
      return Setting{*orloHead(kBackFeedHead, dpi.x, dpi.y), Pins::OrloBack, split};
    case 2: {
      const auto head = standardHead(72, dpi.x, dpi.y);
      if (!head) return std::nullopt;
      return Setting{*head, Pins::Standard, split};
    }
    default:
      return Setting{*standardHead(24, dpi.x, dpi.y), Pins::Standard, split};
  }
}

TEST(Sweep, StrikesEveryDotOfRandomPlanesOnceAndOnItsPlace) {
  constexpr unsigned kPages = testing::amount(4000U, 600U, 150U);
  for (unsigned seed = 1; seed <= kPages && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto setting = randomSetting(random);
    if (!setting) continue;
    const Planes planes = randomPlanes(random, static_cast<int>(1 + random() % 500),
                                       static_cast<int>(1 + random() % 300));
    const PrintedPage page = print(planes, *setting);
    EXPECT_EQ(page.struck, wanted(planes, *setting))
        << setting->head.xdpi << " x " << setting->head.ydpi;
    EXPECT_LE(page.movesBack, setting->split ? 1 : 0);
  }
}

}  // namespace
}  // namespace velka::exacttest
