#include "exact/Job.h"

#include <algorithm>
#include <random>
#include <type_traits>

#include "jobs/JobFixture.h"

namespace velka::exacttest {
namespace {

struct Pair {
  unsigned x;
  unsigned y;
};
constexpr Pair kPairs[] = {{60, 180},  {90, 180}, {120, 180}, {180, 180}, {360, 180},
                           {360, 360}, {60, 60},  {80, 60},   {90, 60},   {120, 60}};

class Chance {
 public:
  explicit Chance(unsigned seed) : random_(seed) {}
  int below(int limit) { return static_cast<int>(random_() % static_cast<unsigned>(limit)); }
  bool in(int limit) { return below(limit) == 0; }

 private:
  std::mt19937 random_;
};

void chooseOffsets(Job& job, Chance& chance) {
  const auto choose = [&](const char* keyword, auto& direction, auto& tenths) {
    direction = static_cast<std::remove_reference_t<decltype(direction)>>(chance.below(2));
    const int millimetres = chance.below(12);
    tenths = static_cast<std::remove_reference_t<decltype(tenths)>>(millimetres * 10);
    job.choose(keyword, direction);
    job.choose(std::string(keyword) + "Value", millimetres);
  };
  choose("HorizontalOffset", job.options.sHrzDir, job.options.sHrzOffset);
  choose("VerticalOffset", job.options.sVtcDir, job.options.sVtcOffset);
}

void chooseHalftone(Job& job, Chance& chance) {
  constexpr int kModes[] = {1, 2, 3, 4, 5, 6};
  const int black = kModes[chance.below(6)];
  const int red = kModes[chance.below(6)];
  job.options.sDitherBlack = static_cast<int16_t>(black);
  job.options.sDitherRed = static_cast<int16_t>(red);
  job.choose("HalftoneBlack", black);
  job.choose("HalftoneRed", red);
}

RasterPage randomPage(const cups_page_header2_t& header, Chance& chance) {
  if (chance.in(5)) return testing::whitePage(header);
  return testing::inkedPage(header, static_cast<unsigned>(chance.below(1000)));
}

}  // namespace

Job jobOf(int model) {
  Job job;
  job.model = model;
  if (model == kOrlo) {
    job.options.minColorOffset.rgbRed = 150;
    job.options.sModel = kOrlo;
  }
  return job;
}

Job randomJob(unsigned seed) {
  Chance chance(seed);
  Job job = jobOf(1 + chance.below(2));
  if (chance.in(3)) {
    job.options.SplitBlackRed = 1;
    job.choose("SplitBlackRed", 1);
  }
  if (chance.in(3)) chooseOffsets(job, chance);
  if (chance.in(3)) {
    job.options.sRotation = static_cast<int16_t>(1 + chance.below(3));
    job.choose("AnticlockwiseRotate", job.options.sRotation);
  }
  if (chance.in(2)) chooseHalftone(job, chance);
  const Pair pair = kPairs[chance.below(std::size(kPairs))];
  cups_page_header2_t header = testing::rgbHeader(
      static_cast<unsigned>(1 + chance.below(chance.in(8) ? 3 : 260)),
      static_cast<unsigned>(1 + chance.below(chance.in(8) ? 3 : 240)), pair.x, pair.y);
  header.NumCopies = static_cast<unsigned>(chance.in(3) ? 2 + chance.below(2) : 1);
  header.Collate = chance.in(2) ? CUPS_TRUE : CUPS_FALSE;
  for (int page = 1 + chance.below(3); page > 0; --page) {
    job.pages.push_back(randomPage(header, chance));
    // Later pages may have another size.
    if (!chance.in(4)) continue;
    const cups_page_header2_t other =
        testing::rgbHeader(static_cast<unsigned>(1 + chance.below(260)),
                           static_cast<unsigned>(1 + chance.below(240)), pair.x, pair.y);
    header.cupsWidth = other.cupsWidth;
    header.cupsHeight = other.cupsHeight;
    header.cupsBytesPerLine = other.cupsBytesPerLine;
  }
  return job;
}

Bytes print(const Job& job, bool exact) {
  auto choices = job.choices;
  choices.emplace_back("DotPlacement", exact ? "1" : "0");
  const testing::TempFile ppd(testing::ppdText({job.model, choices, false}));
  testing::FilterJob run;
  run.ppd = ppd.path();
  run.input = testing::rasterStream(job.pages);
  const testing::FilterResult result = testing::runFilter(testing::kFilter, run);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, testing::finished(job.pages.size()));
  return result.output;
}

}  // namespace velka::exacttest
