#include "PlacementPage.h"

#include "PageWriter.h"

namespace velka::calibration {
namespace {

// Red goes down from the band of the text above it, and black again, which forgets the
// way that red has made: these rows.
constexpr int kForgottenRows = 28;

constexpr int kBoxWidth = 300;
constexpr int kBoxHeight = 45;
constexpr int kThick = 3;

constexpr int kLadderBands = 24;
constexpr int kLadder = kLadderBands * kBand;
constexpr int kRail = 6;
constexpr int kRungTop = 9;

// The band of the red must hold no row of black, even where a rasteriser squeezes the
// page by half a dot; so black starts as low in its first dot as it can, drawn over red.
void addBars(PageWriter& writer, DotDrawing& page) {
  constexpr double kLow = 0.4;
  const int red = writer.row() - kLine + kForgottenRows;
  const int black = red + kBand;
  writer.box(kLeft, red, kWidth, kBand + 1, kRed);
  page.boxes.push_back({kLeft, black + kLow, kWidth, kBand - kLow});
  writer.goTo(black + kBand);
}

// Nothing else in its bands, so the line at its right is the last column of their
// blocks, even where dots lie elsewhere: the bars end before it.
void addFrame(PageWriter& writer) {
  constexpr int kBars = kBoxWidth - 1;
  const int top = writer.row();
  writer.box(kLeft, top, kBars, kThick);
  writer.box(kLeft, top, 1, kBoxHeight);
  writer.box(kLeft + kBars, top, 1, kBoxHeight);
  writer.box(kLeft, top + kBoxHeight - kThick, kBars, kThick);
  writer.skip(kBoxHeight);
}

// Both inks in each band, and no white row: after each the paper comes to lie a row off.
void addLadder(PageWriter& writer) {
  const int top = writer.row();
  for (int band = 0; band < kLadderBands; ++band) {
    const int rung = top + band * kBand + kRungTop;
    writer.box(kLeft + kRail, rung, kWidth - 2 * kRail, kRail, kRed);
  }
  writer.box(kLeft, top, kWidth, kRail);
  writer.box(kLeft, top, kRail, kLadder);
  writer.box(kLeft + kWidth - kRail, top, kRail, kLadder);
  writer.box(kLeft, top + kLadder - kRail, kWidth, kRail);
  writer.skip(kLadder);
}

}  // namespace

DotDrawing placementPage() {
  DotDrawing page{"Velka: placement of the dots", kRollWidth, kRollLength, {}};
  PageWriter writer(page);
  writer.title("Which DotPlacement?");
  writer.line("Print with DotPlacement=Original at");
  writer.line("180 x 180 dpi. Note A or B three times.");
  writer.skip(kLine);
  writer.line("1  The red and the black bar touch: A");
  writer.line("   A gap of about 4 mm: B");
  addBars(writer, page);
  writer.skip(kBand);
  writer.line("2  A thin line closes the box at the");
  writer.line("   right as at the left: A   None: B");
  writer.skip(kBand / 2);
  addFrame(writer);
  writer.skip(2 * kBand);
  writer.line("3  Measure how high the ladder is.");
  writer.line("   81 mm: A");
  writer.line("   78 mm: B");
  writer.skip(kBand / 2);
  addLadder(writer);
  writer.skip(kBand);
  writer.line("Mostly A: leave DotPlacement as it is.");
  writer.line("Mostly B: set DotPlacement to Exact:");
  writer.line("lpadmin -p QUEUE -o DotPlacement=Exact");
  return page;
}

}  // namespace velka::calibration
