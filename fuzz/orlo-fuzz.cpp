// The Orlo encoders with any planes, both feeds, inks together and apart: the commands are
// those of the literal encoder, and paper holds the planes' dots.
#include "Input.h"
#include "orlo/LiteralEncoder.h"
#include "orlo/PaperRules.h"
#include "orlo/PrintingHead.h"

namespace {

using namespace velka::orlotest;
using velka::fuzz::Input;
using velka::fuzz::require;

void putDots(DotPage& page, const velka::fuzz::Bytes& dots, bool red) {
  for (int y = 0; y < page.height; ++y)
    for (int x = 0; x < page.width; ++x)
      if (dots[static_cast<size_t>(y) * static_cast<size_t>(page.width) + static_cast<size_t>(x)] ==
          0)
        red ? page.putRed(x, y) : page.putBlack(x, y);
}

// Rows that an ink's head cannot reach hold none of it, as the separation sees to.
void clearUnreached(velka::fuzz::Bytes& dots, int width, int rows) {
  const auto end = static_cast<size_t>(width) * static_cast<size_t>(rows);
  std::fill(dots.begin(), dots.begin() + static_cast<std::ptrdiff_t>(std::min(end, dots.size())),
            uint8_t{255});
}

DotPage anyPage(Input& input, Feed feed, int passes) {
  DotPage page(1 + input.below(48), 1 + input.below(220));
  const auto size = static_cast<size_t>(page.width) * static_cast<size_t>(page.height);
  auto black = input.dots(size);
  auto red = input.dots(size);
  clearUnreached(feed == Feed::Back ? black : red, page.width,
                 (feed == Feed::Back ? 16 : 28) * passes);
  putDots(page, black, false);
  putDots(page, red, true);
  return page;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const Feed feed = input.flag() ? Feed::Back : Feed::Front;
  const bool split = input.flag();
  const ModeRow& mode = allModes()[input.byte() % allModes().size()];
  const DotPage page = anyPage(input, feed, passesAt(mode.dpi.vertical));
  const Bytes stream = encode(page, feed, split, mode.dpi);
  require(stream == encodeLiterally(page, feed, split, mode).commands);
  const Paper paper = printStream(stream, feed);
  require(paper.complaint.empty());
  const Expected expected = expectedPaper(page, feed, split, mode);
  require(samePaper(paper.black, expected.black, mode.dpi.horizontal));
  require(samePaper(paper.red, expected.red, mode.dpi.horizontal));
  return 0;
}
