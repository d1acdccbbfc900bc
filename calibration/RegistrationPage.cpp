#include "RegistrationPage.h"

namespace velka::calibration {
namespace {

constexpr int kFineDpi = 360;
constexpr int kDot = kFineDpi / 180;  // dots of the drawing in one of the text's
constexpr int kMiddle = kLeft + kWidth / 2;

constexpr int kAcrossTop = 240;
constexpr int kAlongTop = 400;
// A band of the head and more below the text, so that each field starts a band of its
// own: its first row is then one of the first pass. And no higher than the black dots of
// the smallest head.
constexpr int kPassesTop = 830;
constexpr int kPassesAlongTop = 930;

constexpr int kPassRows = 9;  // rows of a pass in a line across

std::string textOf(int number) {
  return std::to_string(number);
}

// Numbers below the lines of a vernier that goes across, at its left of one that goes down.
void addNumbers(PageWriter& writer, const Vernier& vernier, int at) {
  constexpr int kHalfLetter = 7;
  for (int number = -vernier.steps; number <= vernier.steps; number += 2) {
    const std::string text = textOf(number);
    const int along = (vernier.zero + number * vernier.pitch) / kDot;
    if (vernier.down) {
      writer.text(text, at - widthOf(text), along - kHalfLetter);
    } else {
      writer.label(text, along, at);
    }
  }
}

void addVernier(DotDrawing& page, const Vernier& vernier) {
  for (int number = -vernier.steps; number <= vernier.steps; ++number) {
    page.boxes.push_back(fixedLine(vernier, number));
    page.boxes.push_back(movingLine(vernier, number));
  }
}

// A line as one pass strikes it: a dot in each second row.
void addDotted(DotDrawing& page, const DotBox& line) {
  for (int row = 0; row < kPassRows; ++row) {
    page.boxes.push_back({line.left, line.top + 2 * row, line.width, 1, line.colour});
  }
}

void addPassesAcross(DotDrawing& page, const Vernier& vernier) {
  for (int number = -vernier.steps; number <= vernier.steps; ++number) {
    addDotted(page, fixedLine(vernier, number));
    addDotted(page, movingLine(vernier, number));
  }
}

void addPassesAlong(DotDrawing& page, PageWriter& writer, const Betweens& betweens) {
  constexpr int kNumbersBelow = 14;
  for (int number = -betweens.steps; number <= betweens.steps; ++number) {
    for (const auto& line : {upperLine, lowerLine, middleLine}) {
      page.boxes.push_back(line(betweens, number));
    }
    const DotBox middle = middleLine(betweens, number);
    writer.label(textOf(number), static_cast<int>(middle.left) / kDot,
                 betweens.top / kDot + kNumbersBelow);
  }
}

DotBox lineOf(const Betweens& betweens, int number, int across, int down) {
  const int left = betweens.left + (number + betweens.steps) * betweens.pitch + across;
  return {double(left), double(betweens.top + down), double(betweens.length), 1};
}

void addInks(DotDrawing& page, PageWriter& writer, const RegistrationFields& fields) {
  writer.goTo(kAcrossTop - 2 * kLine);
  writer.line("1  Red against black, across");
  addVernier(page, fields.across);
  addNumbers(writer, fields.across, kAcrossTop + 2 * kBand + 8);
  writer.goTo(kAlongTop - 2 * kLine);
  writer.line("2  Red against black, along the paper");
  addVernier(page, fields.along);
  addNumbers(writer, fields.along, 130);
  constexpr int kBeside = 290;
  int row = kAlongTop + 20;
  for (const char* text :
       {"1 and 2:", "-1 to 1 is fine.", "More: no option", "moves one ink.", "", "Try the option",
        "SplitBlackRed=", "   BlackFirst", "and keep what", "is nearer to 0."}) {
    writer.text(text, kBeside, row);
    row += kLine;
  }
}

void addPasses(DotDrawing& page, PageWriter& writer, const RegistrationFields& fields) {
  writer.goTo(kPassesTop - 3 * kLine);
  writer.line("3  The two passes of 360 dpi, across");
  addPassesAcross(page, fields.passesAcross);
  addNumbers(writer, fields.passesAcross, kPassesTop + 26);
}

void addPassesDown(DotDrawing& page, PageWriter& writer, const RegistrationFields& fields) {
  writer.goTo(kPassesAlongTop);
  writer.line("4  The two passes, along the paper:");
  writer.line("   where is the short line at the right");
  writer.line("   halfway between the two at the left?");
  addPassesAlong(page, writer, fields.passesAlong);
  writer.goTo(fields.passesAlong.top / kDot + 3 * kLine);
  writer.line("3 and 4: -1 to 1 is fine. More: no");
  writer.line("option moves one pass. Print in one:");
  writer.line("Resolution=360x180dpi or 180dpi.");
}

}  // namespace

DotBox upperLine(const Betweens& betweens, int number) {
  return lineOf(betweens, number, 0, 0);
}

DotBox lowerLine(const Betweens& betweens, int number) {
  return lineOf(betweens, number, 0, betweens.apart);
}

// A second pass that comes to lie too low brings down what is drawn too high.
DotBox middleLine(const Betweens& betweens, int number) {
  return lineOf(betweens, number, betweens.length, betweens.apart / 2 - number * betweens.step);
}

RegistrationFields registrationFields() {
  constexpr int kLength = kBand * kDot;
  RegistrationFields fields;
  fields.across = {false,
                   kMiddle * kDot,
                   10,
                   20 * kDot,
                   kDot,
                   kDot,
                   kAcrossTop * kDot,
                   kAcrossTop * kDot + kLength,
                   kLength};
  fields.along = {
      true, (kAlongTop + 150) * kDot, 10, 14 * kDot, kDot, kDot, 140 * kDot, 190 * kDot, 50 * kDot};
  fields.passesAcross = {false,
                         kMiddle * kDot,
                         10,
                         20 * kDot,
                         kDot,
                         1,
                         kPassesTop * kDot,
                         kPassesTop * kDot + 2 * kPassRows + 1,
                         2 * kPassRows,
                         kBlack,
                         kBlack};
  fields.passesAlong = {
      kLeft * kDot, (kPassesAlongTop + 120) * kDot, 64 * kDot, 24 * kDot, 2 * 7, 3, kDot};
  return fields;
}

Drawn registrationPage(const PageSettings& settings) {
  DotDrawing page = drawingOn(settings, "Velka: registration of the dots", kFineDpi);
  PageWriter writer(page);
  const RegistrationFields fields = registrationFields();
  writer.title("Registration of the dots");
  addPrintLines(writer, settings, "-o Resolution=360dpi");
  writer.line("Where a line goes on in a line of the");
  writer.line("other side, read its number. 1 is");
  writer.line("0.14 mm. None does: see page placement.");
  addInks(page, writer, fields);
  addPasses(page, writer, fields);
  addPassesDown(page, writer, fields);
  return fitting(std::move(page), settings);
}

}  // namespace velka::calibration
