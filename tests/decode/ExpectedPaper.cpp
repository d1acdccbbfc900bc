#include "decode/ExpectedPaper.h"

#include <optional>

namespace velka::decodetest {
namespace {

using reference::Separation;

constexpr int kBlack = 0;
constexpr int kRed = 1;

// What of a band one pass prints in one ink: its columns with a dot, from the block's
// first column to the one before the last with ink.
struct Stretch {
  int first = 0;  // the column the block is placed by
  int end = 0;    // behind the last one printed
};

class Press {
 public:
  Press(const Separation& planes, const PrintedAt& at)
      : planes_(planes), at_(at), passes_(at.ydpi == 360 ? 2 : 1), head_(at.ydpi == 60 ? 8 : 24) {}

  Dots print() {
    const bool both = !at_.split;
    for (const _RECTL& band : planes_.bands) {
      if (planes_.blackFlag) ink(kBlack, band.top);
      if (both && planes_.redFlag) ink(kRed, band.top);
    }
    if (at_.split && planes_.redFlag) printRedHalf();
    return dots_;
  }

 private:
  // All black is on the paper; it goes back to the band where red starts.
  void printRedHalf() {
    size_t from = 0;
    const int red = planes_.firstRedRow.value_or(0);
    const auto& bands = planes_.bands;
    while (from + 1 < bands.size() && bands[from].bottom < red && bands[from + 1].top < red) ++from;
    paper_ -= reached_[kBlack] - bands[from].top;
    correction_ = bands[from].top;
    reached_[kRed] = 0;
    for (; from < bands.size(); ++from) ink(kRed, bands[from].top);
  }

  void ink(int colour, int top) {
    for (int pass = 0; pass < passes_; ++pass) {
      const auto stretch = stretchOf(colour, top, pass);
      started_[colour] = stretch.has_value();
      if (!stretch) continue;
      moveTo(colour, top);
      // Red over black starts a row higher.
      if (colour == kRed && started_[kBlack] && pass == 0) --paper_;
      strike(colour, top, pass, *stretch);
      // The second pass prints the rows in between.
      if (passes_ == 2 && pass == 0) ++paper_;
    }
  }

  // Red follows where black went; black does not know where red did.
  void moveTo(int colour, int top) {
    if (reached_[colour] < top) {
      paper_ += top - reached_[colour];
      if (colour == kRed && reached_[kRed] == 0) paper_ -= correction_;
      reached_[colour] = top;
    }
    if (colour == kBlack && !at_.split) reached_[kRed] = top;
  }

  [[nodiscard]] int rowOf(int top, int pass, int dot) const {
    return passes_ == 2 ? top + pass + 2 * dot : top + dot;
  }

  [[nodiscard]] bool isDot(int colour, int row, int column) const {
    const auto& plane = colour == kRed ? planes_.red : planes_.black;
    return plane.at(static_cast<size_t>(row) * static_cast<size_t>(planes_.width) +
                    static_cast<size_t>(column)) == 0;
  }

  [[nodiscard]] bool isBlank(int colour, int top, int pass, int column) const {
    for (int dot = 0; dot < head_; ++dot)
      if (isDot(colour, rowOf(top, pass, dot), column)) return false;
    return true;
  }

  // None where nothing is sent: the pass passes the page's end, or has no ink.
  [[nodiscard]] std::optional<Stretch> stretchOf(int colour, int top, int pass) const {
    if (rowOf(top, pass, head_ - 1) >= planes_.height) return std::nullopt;
    int first = 0;
    while (first < planes_.width && isBlank(colour, top, pass, first)) ++first;
    if (first == planes_.width) return std::nullopt;
    int last = planes_.width - 1;
    while (isBlank(colour, top, pass, last)) --last;
    // With several bytes a column at most one blank column is left out.
    const int blank = head_ == 8 ? first : std::min(first, 1);
    return Stretch{blank - blank % (at_.xdpi / 60), last};
  }

  void strike(int colour, int top, int pass, const Stretch& stretch) {
    const int64_t down = 3600 / at_.ydpi;
    const int64_t across = 3600 / at_.xdpi;
    const int64_t x = int64_t{60} * (stretch.first * 60 / at_.xdpi);
    for (int column = stretch.first; column < stretch.end; ++column)
      for (int dot = 0; dot < head_; ++dot)
        if (isDot(colour, rowOf(top, pass, dot), column))
          dots_.at(static_cast<size_t>(colour))
              .insert({(paper_ + int64_t{dot} * passes_) * down,
                       x + (column - stretch.first) * across});
  }

  const Separation& planes_;
  PrintedAt at_;
  int passes_;
  int head_;              // dots of a column
  int64_t paper_ = 0;     // rows that the head's first dot is below the top
  int64_t reached_[2]{};  // the row that each ink believes to be at
  int64_t correction_ = 0;
  bool started_[2]{};
  Dots dots_;
};

}  // namespace

Dots expectedPaper(const Separation& planes, const PrintedAt& at) {
  return Press(planes, at).print();
}

}  // namespace velka::decodetest
