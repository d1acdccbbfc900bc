#include "StreamStats.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "Carriage.h"
#include "PageReader.h"

namespace velka::decode {
namespace {

// On the standard head the moves inside a band (odd rows, red over black) are one dot
// of at most 1/60 inch; its 24 pins are at least 48/360 inch high.
constexpr int64_t kBandStep = kUnitsPerInch / 15;

// On the Orlo head a band may start less than its height below the last one. Inside a
// band there is only the step between the two passes at 360 dpi.
constexpr int64_t kPassStep = kUnitsPerInch / 360;

// Follows the head and adds up where it goes. A pass starts at its nearer end.
class Tally {
 public:
  Tally(StreamStats& stats, Model model, const Speeds& speeds)
      : stats_(stats), model_(model), speeds_(speeds) {}

  void take(const Command& command) {
    const Carriage before = carriage_;
    carriage_.apply(command);
    if (command.kind == CommandKind::BitImage) {
      block(command, before);
    } else if (command.kind == CommandKind::FormFeed) {
      endPage(before);
    } else if (command.kind == CommandKind::PaperMove ||
               command.kind == CommandKind::PaperAdvance) {
      move(carriage_.y - before.y);
      bandIsOver_ = bandIsOver_ || command.overwritten > 0;
    } else if (command.kind == CommandKind::Colour && before.colour != command.value) {
      endPass();
    }
  }

  void finish() { endPass(); }

 private:
  void move(int64_t units) {
    endPass();
    ++stats_.paperMoves;
    (units < 0 ? stats_.movedBack : stats_.movedOn) += std::abs(units);
    sinceBlock_ += units;
    feed(units);
  }

  [[nodiscard]] bool startsBand() const {
    if (!pageHasBlocks_ || bandIsOver_) return true;
    if (isOrlo(model_)) return sinceBlock_ != 0 && sinceBlock_ != kPassStep;
    return std::abs(sinceBlock_) >= kBandStep;
  }

  void feed(int64_t units) { stats_.seconds += millimetres(std::abs(units)) / speeds_.feed; }

  void block(const Command& command, const Carriage& at) {
    ++stats_.blocks;
    if (startsBand()) ++stats_.bands;
    pageHasBlocks_ = true;
    bandIsOver_ = false;
    sinceBlock_ = 0;
    const Block struck{at.x, at.y, command.mode, at.colour, command.data, command.offset};
    forEachDot(struck, model_,
               [&](Ink ink, int64_t, int64_t) { ++stats_.dots.at(static_cast<size_t>(ink)); });
    left_ = inPass_ ? std::min(left_, at.x) : at.x;
    right_ = inPass_ ? std::max(right_, carriage_.x) : carriage_.x;
    inPass_ = true;
  }

  void endPass() {
    if (!inPass_) return;
    inPass_ = false;
    ++stats_.passes;
    const bool fromLeft = std::abs(head_ - left_) <= std::abs(head_ - right_);
    const int64_t way = std::abs(head_ - (fromLeft ? left_ : right_)) + (right_ - left_);
    stats_.seconds += millimetres(way) / speeds_.head;
    head_ = fromLeft ? right_ : left_;
  }

  void endPage(const Carriage& before) {
    endPass();
    ++stats_.pages;
    pageHasBlocks_ = false;
    const int64_t form = int64_t{before.lines} * (kUnitsPerInch / 6);
    feed(std::max<int64_t>(0, form - before.y));
  }

  StreamStats& stats_;
  Model model_;
  Speeds speeds_;
  Carriage carriage_;
  int64_t sinceBlock_ = 0;
  int64_t head_ = 0;
  int64_t left_ = 0;
  int64_t right_ = 0;
  bool inPass_ = false;
  bool pageHasBlocks_ = false;
  bool bandIsOver_ = false;  // a move was meant to be longer than what is left of it
};

// What lies on the paper of the pages so far; pages of one job may have cells of
// different sizes.
struct Covered {
  std::array<double, 2> inked{};
  double all = 0;
  bool lengthsKnown = true;
  std::array<uint64_t, 2> places{};
  uint64_t touched = 0;
};

bool addCovered(const Page& page, Model model, PaperWidth width, Covered& covered) {
  Grid grid;
  grid.add(page);
  const Paper paper = paperOf(page, model, grid, width);
  const auto counts = countCells(page, model, grid, paper);
  if (!counts) return false;
  const auto area = static_cast<double>(grid.cell() * grid.cell());
  for (size_t ink = 0; ink < counts->dots.size(); ++ink) {
    covered.inked.at(ink) += static_cast<double>(counts->covered.at(ink)) * area;
    covered.places.at(ink) += counts->dots.at(ink);
  }
  covered.all += static_cast<double>(cellsIn(grid, paper)) * area;
  covered.lengthsKnown = covered.lengthsKnown && page.lines > 0;
  covered.touched += counts->touched;
  return true;
}

void lookAtPaper(Bytes stream, Model model, PaperWidth width, StreamStats& stats) {
  PageReader reader(stream, model);
  Covered covered;
  bool drawable = true;
  while (const auto page = reader.next()) {
    drawable = drawable && addCovered(*page, model, width, covered);
  }
  stats.fault = reader.fault();
  stats.touched = covered.touched;
  if (!drawable) return;
  stats.places = covered.places;
  if (covered.all == 0 || !covered.lengthsKnown) return;
  stats.coverage = {covered.inked[0] / covered.all, covered.inked[1] / covered.all};
}

}  // namespace

StreamStats readStats(Bytes stream, Model model, const Speeds& speeds, PaperWidth width) {
  StreamStats stats;
  stats.bytes = stream.size();
  Tally tally(stats, model, speeds);
  CommandReader reader(stream, model);
  while (const auto command = reader.next()) tally.take(*command);
  tally.finish();
  lookAtPaper(stream, model, width, stats);
  return stats;
}

}  // namespace velka::decode
