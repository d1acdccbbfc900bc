#include "ColoursPage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>

#include "PageTones.h"

namespace velka::calibration {
namespace {

constexpr int kGap = 6;   // between patches, where the lines are
constexpr int kThin = 2;  // of a line

// The bounds' rows.
constexpr int kBoundsTop = 290;
constexpr int kBoundPitch = 48;
constexpr int kBoundHeight = 30;
constexpr int kBoundRow = 2 * kLine + kBoundHeight + 20;
constexpr int kBoundPatches = 10;

// The chart: greys, and a hue every 30 degrees.
constexpr int kChartTop = 660;
constexpr int kHues = 12;
constexpr int kChartPitch = 36;
constexpr int kChartHeight = 30;
constexpr int kRows = 9;
constexpr int kHueStep = 30;

struct Bound {
  const char* option;
  int first;
  int step;
  Colour (*colour)(uint8_t number);
};

constexpr std::array<Bound, 3> kBounds{{
    {"RedMinValue", 90, 10,
     [](uint8_t number) {
       return Colour{number, 0, 0};
     }},
    {"GreenMaxValue", 0, 25,
     [](uint8_t number) {
       return Colour{255, number, 0};
     }},
    {"BlueMaxValue", 0, 25,
     [](uint8_t number) {
       return Colour{255, 0, number};
     }},
}};

ColourPatch patchOf(const InkRules& rules, int left, int top, int width, int height,
                    Colour colour) {
  return {{double(left), double(top), double(width), double(height), colour},
          inkOf(rules, colour).ink,
          ""};
}

ColourRow boundRow(const InkRules& rules, const Bound& bound, int top) {
  ColourRow row{bound.option, top, {}};
  for (int i = 0; i < kBoundPatches; ++i) {
    const int number = bound.first + i * bound.step;
    row.patches.push_back(patchOf(rules, kLeft + i * kBoundPitch, top, kBoundPitch - kGap,
                                  kBoundHeight, bound.colour(static_cast<uint8_t>(number))));
    row.patches.back().number = std::to_string(number);
  }
  return row;
}

uint8_t byteOf(double part) {
  return static_cast<uint8_t>(std::lround(std::clamp(part, 0.0, 1.0) * 255));
}

// A full colour of that hue, made so light (0 to 1).
Colour colourOf(int hue, double lightness) {
  const double reach = std::min(lightness, 1 - lightness);
  const auto part = [&](int turn) {
    const double sector = std::fmod(hue / 30.0 + turn, 12);
    return byteOf(lightness - reach * std::clamp(std::min(sector - 3, 9 - sector), -1.0, 1.0));
  };
  return {part(0), part(8), part(4)};
}

Colour greyOf(double lightness) {
  const uint8_t part = byteOf(lightness);
  return {part, part, part};
}

ColourRow chartRow(const InkRules& rules, int index) {
  const double lightness = 1 - (index + 1) / 10.0;
  const int top = kChartTop + index * (kChartHeight + kGap);
  ColourRow row{"", top, {}};
  for (int column = 0; column <= kHues; ++column) {
    const Colour colour =
        column == 0 ? greyOf(lightness) : colourOf((column - 1) * kHueStep, lightness);
    row.patches.push_back(patchOf(rules, kLeft + column * kChartPitch, top, kChartPitch - kGap,
                                  kChartHeight, colour));
  }
  return row;
}

bool isRed(const ColourRow* row, size_t column) {
  return row != nullptr && column < row->patches.size() && row->patches[column].ink == Ink::Red;
}

// A line wherever red ends: at the left of each patch and of the place behind the last.
void addLinesBeside(PageWriter& writer, const ColourRow& row) {
  const int pitch = pitchOf(row);
  const auto high = static_cast<int>(row.patches.front().box.height) + kGap + kThin;
  for (size_t column = 0; column <= row.patches.size(); ++column) {
    const bool before = column > 0 && isRed(&row, column - 1);
    if (before == isRed(&row, column)) continue;
    const int left = kLeft + static_cast<int>(column) * pitch - (kGap + kThin) / 2;
    writer.box(left, row.top - (kGap + kThin) / 2, kThin, high);
  }
}

void addLinesAcross(PageWriter& writer, const ColourRow& row, int below, const ColourRow* upper,
                    const ColourRow* lower) {
  const int pitch = pitchOf(row);
  for (size_t column = 0; column < row.patches.size(); ++column) {
    if (isRed(upper, column) == isRed(lower, column)) continue;
    const int left = kLeft + static_cast<int>(column) * pitch - (kGap + kThin) / 2;
    writer.box(left, below - (kGap + kThin) / 2, pitch + kThin, kThin);
  }
}

// Above the patches of a row, which has `above` over it, or below those of the last.
void addLinesAbove(PageWriter& writer, const ColourRow* above, const ColourRow& row) {
  addLinesAcross(writer, row, row.top, above, &row);
}

void addLinesBelow(PageWriter& writer, const ColourRow& row) {
  const auto high = static_cast<int>(row.patches.front().box.height);
  addLinesAcross(writer, row, row.top + high + kGap, &row, nullptr);
}

void addPatches(DotDrawing& page, const ColourRow& row) {
  for (const ColourPatch& patch : row.patches) {
    if (patch.box.colour != kWhite) page.boxes.push_back(patch.box);
  }
}

void addBound(DotDrawing& page, PageWriter& writer, const ColourRow& row) {
  writer.text(row.option, kLeft, row.top - kLine - 4);
  for (const ColourPatch& patch : row.patches) {
    const auto middle = static_cast<int>(patch.box.left + patch.box.width / 2);
    writer.label(patch.number, middle, row.top + kBoundHeight + 8);
  }
  addPatches(page, row);
  addLinesBeside(writer, row);
  addLinesAbove(writer, nullptr, row);
  addLinesBelow(writer, row);
}

void addChart(DotDrawing& page, PageWriter& writer, const std::vector<ColourRow>& rows) {
  constexpr std::array<const char*, kHues / 2> kNames{"red",  "yellow", "green",
                                                      "cyan", "blue",   "magenta"};
  constexpr std::array<int, 2> kAbove{30, 54};  // by turns, as they are long
  writer.text("grey", kLeft, kChartTop - kAbove[1]);
  for (size_t i = 0; i < kNames.size(); ++i) {
    writer.text(kNames[i], kLeft + kChartPitch * (2 * static_cast<int>(i) + 1),
                kChartTop - kAbove[i % 2]);
  }
  const ColourRow* above = nullptr;
  for (const ColourRow& row : rows) {
    addPatches(page, row);
    addLinesBeside(writer, row);
    addLinesAbove(writer, above, row);
    above = &row;
  }
  addLinesBelow(writer, rows.back());
}

std::string rangeText(const char* part, int low, int high) {
  return std::string("   ") + part + " " + std::to_string(low) + " to " + std::to_string(high);
}

void addExplanation(PageWriter& writer, const tagOEMCFG& options) {
  const bool black = options.ColorRangeUseFor == 1;
  writer.line(black ? "Black: the greys, and colours with" : "Red: colours, but no greys, with");
  writer.line(rangeText("red", options.minColorOffset.rgbRed, options.maxColorOffset.rgbRed));
  writer.line(rangeText("green", options.minColorOffset.rgbGreen, options.maxColorOffset.rgbGreen));
  writer.line(rangeText("blue", options.minColorOffset.rgbBlue, options.maxColorOffset.rgbBlue));
  writer.line("A frame holds what then prints red.");
}

void addAdvice(PageWriter& writer, const tagOEMCFG& options) {
  const std::string ink = options.ColorRangeUseFor == 1 ? "black" : "red";
  for (const std::string& text : std::initializer_list<std::string>{
           "Light colours at the top, dark ones at", "the bottom. On a screen all are seen.", "",
           "Set RedMinValue to the number of the", "first patch of its row that should be",
           ink + ", GreenMaxValue and BlueMaxValue to", "the last. Then make this page again:",
           "velkaview --calibration colours", "  --ppd FILE --options RedMinValue=120"}) {
    writer.line(text);
  }
}

}  // namespace

int pitchOf(const ColourRow& row) {
  return row.option.empty() ? kChartPitch : kBoundPitch;
}

std::vector<ColourRow> colourRows(const tagOEMCFG& options) {
  const InkRules rules = compileInkRules(options);
  std::vector<ColourRow> rows;
  int top = kBoundsTop;
  for (const Bound& bound : kBounds) {
    rows.push_back(boundRow(rules, bound, top));
    top += kBoundRow;
  }
  for (int index = 0; index < kRows; ++index) rows.push_back(chartRow(rules, index));
  return rows;
}

Drawn coloursPage(const PageSettings& settings) {
  DotDrawing page = drawingOn(settings, "Velka: colours that print red");
  PageWriter writer(page);
  const std::vector<ColourRow> rows = colourRows(settings.options);
  writer.title("Which colours are red?");
  addPrintLines(writer, settings, "-o Resolution=180dpi");
  addExplanation(writer, settings.options);
  for (size_t i = 0; i < kBounds.size(); ++i) addBound(page, writer, rows[i]);
  addChart(page, writer, {rows.begin() + kBounds.size(), rows.end()});
  writer.goTo(kChartTop + kRows * (kChartHeight + kGap) + 8);
  addAdvice(writer, settings.options);
  return fitting(std::move(page), settings);
}

}  // namespace velka::calibration
