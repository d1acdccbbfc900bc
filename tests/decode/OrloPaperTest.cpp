// Whole pages of the Orlo model through the renderer: what the decoder finds on the
// paper is what the literal pipeline's planes hold, less what is dropped on purpose.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "ModelGuess.h"
#include "decode/Dots.h"
#include "decode/RandomPages.h"
#include "escp/PageFixture.h"
#include "orlo/LiteralPipeline.h"
#include "orlo/PaperRules.h"
#include "support/Capture.h"
#include "support/Sweep.h"

namespace velka::decodetest {
namespace {

using decode::Model;
using orlotest::Feed;
using testing::Bytes;

orlotest::ModeRow modeOf(const Dpi& dpi) {
  const auto& modes = orlotest::allModes();
  return *std::ranges::find_if(modes, [&](const orlotest::ModeRow& row) {
    return row.dpi.horizontal == static_cast<int>(dpi.x) &&
           row.dpi.vertical == static_cast<int>(dpi.y);
  });
}

orlotest::LiteralPlanes planesOf(const reference::OutputPage& out, const tagOEMCFG& options,
                                 Feed feed) {
  const auto width = static_cast<int>(out.image.width);
  const auto height = static_cast<int>(out.image.height);
  if (width <= 0 || height <= 0) return {};  // moved off the paper
  const size_t stride = out.image.bytes.size() / static_cast<size_t>(height);
  orlotest::Bitmap page(width, height, stride - 3 * static_cast<size_t>(width));
  page.bytes = out.image.bytes;
  return orlotest::separateLiterally(page, orlotest::configOf(options), out.yResolution,
                                     static_cast<int>(feed));
}

orlotest::DotPage pageOf(const orlotest::LiteralPlanes& planes, int width, int height) {
  orlotest::DotPage page(width, height);
  if (planes.black.hasData) page.black = planes.black;
  if (planes.red.hasData) page.red = planes.red;
  return page;
}

// A page with ink proves back feed; no page is ever taken for another model's.
void expectGuess(const Bytes& stream, Model model, bool struck) {
  const decode::ModelGuess guess = decode::guessModel(stream);
  EXPECT_TRUE(!guess.proved || guess.model == model) << guess.why;
  EXPECT_EQ(guess.matters, struck || guess.proved);
  EXPECT_TRUE(guess.proved || !struck || model == Model::OrloFront) << guess.why;
}

Bytes render(testing::Job& job, bool& printed) {
  const testing::Capture capture(STDOUT_FILENO);
  printed = RenderEscpData(&job.devobj);
  return capture.bytes();
}

struct Setting {
  Dpi dpi;
  Feed feed;
  uint32_t width;
  uint32_t height;
  tagOEMCFG options;
};

Setting randomSetting(std::mt19937& random) {
  Setting setting{};
  setting.dpi = kDpis[random() % std::size(kDpis)];
  setting.feed = random() % 2 == 0 ? Feed::Front : Feed::Back;
  setting.width = static_cast<uint32_t>(2 + random() % 150);
  setting.height = static_cast<uint32_t>(1 + random() % 300);
  setting.options = randomOptions(random);
  setting.options.sModel = static_cast<int16_t>(setting.feed);
  return setting;
}

std::string trace(unsigned seed, const Setting& setting) {
  return "seed " + std::to_string(seed) + ", " + std::to_string(setting.dpi.x) + " x " +
         std::to_string(setting.dpi.y) + (setting.feed == Feed::Front ? ", front" : ", back") +
         (setting.options.SplitBlackRed != 0 ? ", split" : "");
}

// Dots that lie on paper and ought to, so that no run can pass on white pages alone.
size_t expectPlanesOnPaper(unsigned seed) {
  std::mt19937 random(seed);
  const Setting setting = randomSetting(random);
  SCOPED_TRACE(trace(seed, setting));
  testing::Job job(setting.width, setting.height, setting.dpi.x, setting.dpi.y);
  job.options = setting.options;
  job.devobj.nModel = 1;
  reference::DeviceState device = testing::deviceState(job);
  const auto source = patches(random, setting.width, setting.height);
  job.setPage(source, 1);
  bool printed = false;
  const Bytes stream = render(job, printed);
  const reference::OutputPage out = reference::layOutPage(source, job.options, device);
  const auto planes = planesOf(out, job.options, setting.feed);
  const Model model = setting.feed == Feed::Front ? Model::OrloFront : Model::OrloBack;
  const auto pages = pagesOf(stream, model);
  EXPECT_EQ(pages.size(), 1U);
  if (pages.size() != 1) return 0;
  const orlotest::ModeRow mode = modeOf(setting.dpi);
  const auto expected =
      orlotest::expectedPaper(pageOf(planes, std::max(0, static_cast<int>(out.image.width)),
                                     std::max(0, static_cast<int>(out.image.height))),
                              setting.feed, job.options.SplitBlackRed == 1, mode);
  const Dots found = dotsOf(pages[0], model);
  EXPECT_TRUE(orlotest::samePaper(found[0], expected.black, mode.dpi.horizontal))
      << "black: " << found[0].size() << " dots, not " << expected.black.size();
  EXPECT_TRUE(orlotest::samePaper(found[1], expected.red, mode.dpi.horizontal))
      << "red: " << found[1].size() << " dots, not " << expected.red.size();
  EXPECT_TRUE(printed || pages[0].blocks.empty());
  expectGuess(stream, model, !pages[0].blocks.empty());
  return found[0].size() + found[1].size();
}

TEST(OrloPaper, HoldsTheHalftonedPlanesOfRandomPages) {
  constexpr unsigned kPages = testing::amount(1200U, 200U, 60U);
  size_t dots = 0;
  for (unsigned seed = 1; seed <= kPages && !::testing::Test::HasFailure(); ++seed)
    dots += expectPlanesOnPaper(seed);
  EXPECT_GT(dots, 100U * kPages);
}

}  // namespace
}  // namespace velka::decodetest
