#include "PlacementPage.h"

namespace velka::view {
namespace {

constexpr double kPointsPerMillimetre = 72 / 25.4;

// 4.2 to 72 mm from the paper's edge: a head of 72 mm reaches it from either edge.
constexpr int kLeft = 30;
constexpr int kWidth = 480;

constexpr int kBand = 24;  // rows that the head prints in one pass
constexpr int kLine = kBand;
constexpr int kTextCell = 2;
constexpr int kTitleCell = 3;

// Red goes down from the band of the text above it, and black again, which forgets the
// way that red has made: these rows.
constexpr int kGap = 28;

constexpr int kBoxWidth = 300;
constexpr int kBoxHeight = 45;
constexpr int kThick = 3;

constexpr int kLadderBands = 24;
constexpr int kLadder = kLadderBands * kBand;
constexpr int kRail = 6;
constexpr int kRungTop = 9;

class Writer {
 public:
  explicit Writer(DotDrawing& page) : page_(page) {}

  void skip(int rows) { row_ += rows; }
  [[nodiscard]] int row() const { return row_; }

  void title(const char* text) {
    page_.addText(text, kLeft, row_, kTitleCell);
    row_ += 36;
  }

  void line(const char* text) {
    page_.addText(text, kLeft, row_, kTextCell);
    row_ += kLine;
  }

  // The band of the red must hold no row of black, even where a rasteriser squeezes the
  // page by half a dot; so black starts as low in its first dot as it can, drawn over red.
  void bars() {
    constexpr double kLow = 0.4;
    const int red = row_ - kLine + kGap;
    const int black = red + kBand;
    add(kLeft, red, kWidth, kBand + 1, decode::Ink::Red);
    page_.boxes.push_back({kLeft, black + kLow, kWidth, kBand - kLow});
    row_ = black + kBand;
  }

  // Nothing else in its bands, so the line at its right is the last column of their
  // blocks, even where dots lie elsewhere: the bars end before it.
  void box() {
    constexpr int kBars = kBoxWidth - 1;
    add(kLeft, row_, kBars, kThick);
    add(kLeft, row_, 1, kBoxHeight);
    add(kLeft + kBars, row_, 1, kBoxHeight);
    add(kLeft, row_ + kBoxHeight - kThick, kBars, kThick);
    row_ += kBoxHeight;
  }

  // Both inks in each band, and no white row: after each the paper comes to lie a row off.
  void ladder() {
    for (int band = 0; band < kLadderBands; ++band) {
      const int rung = row_ + band * kBand + kRungTop;
      add(kLeft + kRail, rung, kWidth - 2 * kRail, kRail, decode::Ink::Red);
    }
    add(kLeft, row_, kWidth, kRail);
    add(kLeft, row_, kRail, kLadder);
    add(kLeft + kWidth - kRail, row_, kRail, kLadder);
    add(kLeft, row_ + kLadder - kRail, kWidth, kRail);
    row_ += kLadder;
  }

 private:
  void add(int left, int top, int width, int height, decode::Ink ink = decode::Ink::Black) {
    page_.boxes.push_back({double(left), double(top), double(width), double(height), ink});
  }

  DotDrawing& page_;
  int row_ = kBand;
};

}  // namespace

DotDrawing placementPage() {
  DotDrawing page{
      "Velka: placement of the dots", 80 * kPointsPerMillimetre, 200 * kPointsPerMillimetre, {}};
  Writer writer(page);
  writer.title("Which DotPlacement?");
  writer.line("Print with DotPlacement=Original at");
  writer.line("180 x 180 dpi. Note A or B three times.");
  writer.skip(kLine);
  writer.line("1  The red and the black bar touch: A");
  writer.line("   A gap of about 4 mm: B");
  writer.bars();
  writer.skip(kBand);
  writer.line("2  A thin line closes the box at the");
  writer.line("   right as at the left: A   None: B");
  writer.skip(kBand / 2);
  writer.box();
  writer.skip(2 * kBand);
  writer.line("3  Measure how high the ladder is.");
  writer.line("   81 mm: A");
  writer.line("   78 mm: B");
  writer.skip(kBand / 2);
  writer.ladder();
  writer.skip(kBand);
  writer.line("Mostly A: leave DotPlacement as it is.");
  writer.line("Mostly B: set DotPlacement to Exact:");
  writer.line("lpadmin -p QUEUE -o DotPlacement=Exact");
  return page;
}

}  // namespace velka::view
