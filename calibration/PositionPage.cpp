#include "PositionPage.h"

#include <cmath>

#include "PagePlacement.h"

namespace velka::calibration {
namespace {

constexpr int kDpi = 180;
constexpr int kAcrossFoot = 310;
constexpr int kDownFoot = 410;
constexpr int kLongest = 40;
constexpr int kFive = 50;  // tenths of a millimetre

struct Scale {
  bool down;
  int foot;
};

// Fives are the longest, then whole millimetres, then halves.
int lengthOf(int tenths) {
  if (tenths == 0) return kLongest + 10;
  return tenths % kFive == 0 ? kLongest : tenths % 10 == 0 ? 28 : 16;
}

void addLine(PageWriter& writer, const Scale& scale, int tenths) {
  const int length = lengthOf(tenths);
  if (scale.down) {
    writer.box(scale.foot, lineAt(tenths), length, 1);
  } else {
    writer.box(lineAt(tenths), scale.foot - length, 1, length);
  }
}

void addNumber(PageWriter& writer, const Scale& scale, int tenths) {
  const std::string text = std::to_string(std::abs(tenths) / 10);
  if (scale.down) {
    writer.text(text, scale.foot + kLongest + 16, lineAt(tenths) - 7);
  } else {
    writer.label(text, lineAt(tenths), scale.foot - kLongest - 32);
  }
}

void addScale(PageWriter& writer, const Scale& scale) {
  for (int tenths = -10 * kFarthest; tenths <= 10 * kFarthest; tenths += 5) {
    const bool half = tenths % 10 != 0;
    if (half && std::abs(tenths) > 10 * kHalves) continue;
    addLine(writer, scale, tenths);
    if (tenths % kFive == 0) addNumber(writer, scale, tenths);
  }
}

void addText(PageWriter& writer) {
  for (const char* text : {"1  Lay a ruler on the paper, its 0 on",
                           "   the left edge, across. Which line of",
                           "   the scale is at its 30 mm?",
                           "   At 0 nothing is to be set. Right of",
                           "   0 set, with the number,",
                           "      HorizontalOffset=Right",
                           "      HorizontalOffsetValue=number",
                           "   Left of 0 the same with Left.",
                           "",
                           "2  Its 0 on the top edge, along: which",
                           "   line is at 30 mm? Below 0 set",
                           "      VerticalOffset=Down",
                           "      VerticalOffsetValue=number",
                           "   Above 0 the same with Up.",
                           "",
                           "Short lines are 0.5 mm. To set them:",
                           "lpadmin -p QUEUE",
                           "   -o HorizontalOffset=Left",
                           "   -o HorizontalOffsetValue=2.5",
                           "Printed with them this page reads 0."}) {
    writer.line(text);
  }
}

}  // namespace

int lineAt(int tenths) {
  const int zero = tenthsToDots(10 * kReference, kDpi);
  const int way = tenthsToDots(std::abs(tenths), kDpi);
  return tenths < 0 ? zero - way : zero + way;
}

PositionFields positionFields() {
  return {kAcrossFoot, kDownFoot, kLongest};
}

Drawn positionPage(const PageSettings& settings) {
  DotDrawing page = drawingOn(settings, "Velka: position on the paper");
  PageWriter writer(page);
  writer.title("Where is the page?");
  addPrintLines(writer, settings, "-o Resolution=180dpi");
  writer.line("   -o HorizontalOffsetValue=0");
  writer.line("   -o VerticalOffsetValue=0");
  addScale(writer, {false, kAcrossFoot});
  writer.text("Left", lineAt(-10 * kFarthest), kAcrossFoot + 8);
  writer.text("Right", lineAt(10 * kFarthest) - widthOf("Right"), kAcrossFoot + 8);
  addScale(writer, {true, kDownFoot});
  writer.label("30 mm", lineAt(0), kAcrossFoot + 8);
  writer.text("30 mm", kDownFoot - 8 - widthOf("30 mm"), lineAt(0) - 7);
  writer.text("Up", kDownFoot, lineAt(-10 * kFarthest) - 30);
  writer.text("Down", kDownFoot, lineAt(10 * kFarthest) + 16);
  writer.goTo(420);
  addText(writer);
  return fitting(std::move(page), settings);
}

}  // namespace velka::calibration
