// Exact sweeps of both heads over any planes: each dot is struck once, on its place, and
// none elsewhere, as a printer finds that shares nothing with the encoder.
#include "ExactSweep.h"
#include "Input.h"
#include "exact/PlainPrinter.h"

namespace {

using namespace velka;
using namespace velka::fuzz;
using namespace velka::exacttest;

struct Setting {
  ExactHead head;
  Pins pins;
  int64_t topRow;
};

struct Planes {
  int width;
  int height;
  Bytes dots[2];

  [[nodiscard]] DotPlane plane(size_t ink) const {
    return {dots[ink].data(), width, height, height};
  }
};

std::optional<Setting> anySetting(Input& input) {
  struct Dpi {
    int16_t x;
    int16_t y;
  };
  constexpr Dpi kDpis[] = {{60, 180},  {90, 180}, {120, 180}, {180, 180}, {360, 180},
                           {360, 360}, {60, 60},  {80, 60},   {90, 60},   {120, 60}};
  const Dpi dpi = input.oneOf(kDpis);
  const int64_t topRow = input.flag() ? input.below(3000) : 0;
  const int kind = input.byte() % 4;
  if (kind == 0) return Setting{*orloHead(kFrontFeedHead, dpi.x, dpi.y), Pins::OrloFront, topRow};
  if (kind == 1) return Setting{*orloHead(kBackFeedHead, dpi.x, dpi.y), Pins::OrloBack, topRow};
  const auto head = standardHead(kind == 2 ? int16_t{72} : int16_t{24}, dpi.x, dpi.y);
  if (!head) return std::nullopt;
  return Setting{*head, Pins::Standard, topRow};
}

Planes anyPlanes(Input& input) {
  Planes planes = {1 + input.below(64), 1 + input.below(220), {}};
  for (Bytes& dots : planes.dots)
    dots = input.dots(static_cast<size_t>(planes.width) * static_cast<size_t>(planes.height));
  return planes;
}

std::map<Spot, int> wanted(const Planes& planes, const Setting& setting) {
  std::map<Spot, int> spots;
  for (int ink = 0; ink < 2; ++ink) {
    const NozzleGroup& nozzles = ink == 0 ? setting.head.black : setting.head.red;
    // The rows above are those that the ink's dots do not reach.
    for (int64_t y = nozzles.offset(setting.head.passes()); y < planes.height; ++y)
      for (int64_t x = 0; x < planes.width; ++x)
        if (planes.plane(static_cast<size_t>(ink)).row(y)[x] == 0)
          spots[{ink, (y + setting.topRow) * 3600 / setting.head.ydpi,
                 x * 3600 / setting.head.xdpi}] = 1;
  }
  return spots;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const auto setting = anySetting(input);
  if (!setting) return 0;
  const bool split = input.flag();
  const Planes planes = anyPlanes(input);
  unsigned char* bytes = nullptr;
  unsigned length = 0;
  unsigned at = 0;
  const CommandSink sink = {&bytes, &length, &at};
  ExactSweep sweep(setting->head, planes.plane(0), planes.plane(1), setting->topRow, sink);
  require(sweep.prepare());
  require(sweep.print({true, !split}));
  require(!split || sweep.print({false, true}));
  const uint8_t feed = 0x0C;
  require(sink.append({&feed, 1}));
  const PrintedJob job = printOut({bytes, length}, setting->pins);
  std::free(bytes);
  require(!job.fault && job.pages.size() == 1 && !job.rest);
  require(job.pages[0].struck == wanted(planes, *setting));
  require(job.pages[0].movesBack <= (split ? 1 : 0));
  return 0;
}
