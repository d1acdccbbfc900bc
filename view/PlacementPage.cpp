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

constexpr int kLadderBands = kWidth / kBand;
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

  // Black is drawn over red: where edges fall into dots, after all, a row of the red goes.
  void bars() {
    const int red = row_ - kLine + kGap;
    page_.boxes.push_back({kLeft, red, kWidth, kBand, decode::Ink::Red});
    page_.boxes.push_back({kLeft, red + kBand, kWidth, kBand});
    row_ = red + 2 * kBand;
  }

  // Nothing else in its bands, so the line at its right is the last column of their blocks.
  void box() {
    page_.boxes.push_back({kLeft, row_, kBoxWidth - 1, kThick});
    page_.boxes.push_back({kLeft, row_, 1, kBoxHeight});
    page_.boxes.push_back({kLeft + kBoxWidth - 1, row_, 1, kBoxHeight});
    page_.boxes.push_back({kLeft, row_ + kBoxHeight - kThick, kBoxWidth - 1, kThick});
    row_ += kBoxHeight;
  }

  // Both inks in each band, and no white row: after each the paper comes to lie a row off.
  void ladder() {
    for (int band = 0; band < kLadderBands; ++band) {
      page_.boxes.push_back({kLeft + kRail, row_ + band * kBand + kRungTop, kWidth - 2 * kRail,
                             kRail, decode::Ink::Red});
    }
    page_.boxes.push_back({kLeft, row_, kWidth, kRail});
    page_.boxes.push_back({kLeft, row_, kRail, kWidth});
    page_.boxes.push_back({kLeft + kWidth - kRail, row_, kRail, kWidth});
    page_.boxes.push_back({kLeft, row_ + kWidth - kRail, kWidth, kRail});
    row_ += kWidth;
  }

 private:
  DotDrawing& page_;
  int row_ = kBand;
};

}  // namespace

DotDrawing placementPage() {
  DotDrawing page{
      "Velka: placement of the dots", 80 * kPointsPerMillimetre, 200 * kPointsPerMillimetre, {}};
  Writer writer(page);
  writer.title("Which DotPlacement?");
  writer.line("Print this page with DotPlacement=0 at");
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
  writer.line("3  Measure the ladder.");
  writer.line("   As high as wide: A");
  writer.line("   About 3 mm less high than wide: B");
  writer.skip(kBand / 2);
  writer.ladder();
  writer.skip(kBand);
  writer.line("Mostly A: leave DotPlacement as it is.");
  writer.line("Mostly B: set DotPlacement to 1:");
  writer.line("lpadmin -p QUEUE -o DotPlacement=1");
  return page;
}

}  // namespace velka::view
