#include "TonesPage.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "PageTones.h"

namespace velka::calibration {
namespace {

constexpr int kValues = 7;
constexpr int kShades = 4;
constexpr int kPitch = 68;  // of the columns
constexpr int kPatchWidth = 60;
constexpr int kPatchHeight = 24;
constexpr int kUnderline = 4;

// Below the line that names the option and that of the numbers.
constexpr int kPatchesBelow = 2 * kLine + 4;
constexpr int kSeries = kPatchesBelow + kShades * kPatchHeight + 20;
constexpr int kBlackTop = 220;
constexpr int kRedTop = kBlackTop + 3 * kSeries + kLine;

// A setting between two choices: the PPDs have one such, without a number.
constexpr const char* kNoNumber = "def.";

enum class Part : uint8_t { Brightness, Contrast, Levels };

// An option, and the values of it to show: choices of the PPDs, as they read.
struct Series {
  const char* option;
  Ink ink;
  Part part;
  std::array<int, kValues> values;
};

constexpr std::array<int, kValues> kAroundNeutral{60, 75, 90, 100, 110, 125, 140};

constexpr std::array<Series, 6> kAll{{
    {"BrightnessBlack", Ink::Black, Part::Brightness, kAroundNeutral},
    {"ContrastBlack", Ink::Black, Part::Contrast, kAroundNeutral},
    {"LevelsBlack", Ink::Black, Part::Levels, {4, 7, 10, 14, 20, 28, 40}},
    {"BrightnessRed", Ink::Red, Part::Brightness, kAroundNeutral},
    {"ContrastRed", Ink::Red, Part::Contrast, kAroundNeutral},
    {"LevelsRed", Ink::Red, Part::Levels, {6, 9, 13, 17, 22, 30, 40}},
}};

constexpr std::array<uint8_t, kShades> kGreys{60, 110, 160, 200};
// Of those that redOf() counts: two dark ones, two light ones.
constexpr std::array<int, kShades> kRedDepths{180, 249, 349, 429};

// What the filter makes of a choice.
int settingOf(Part part, int value) {
  return part == Part::Levels ? 3 * value : 2 * value - 200;
}

int& partOf(InkTone& tone, Part part) {
  if (part == Part::Brightness) return tone.brightness;
  return part == Part::Contrast ? tone.contrast : tone.levels;
}

InkTone toneNow(const tagOEMCFG& options, Ink ink) {
  if (ink == Ink::Black)
    return {options.BrightnessBlack, options.ContrastBlack, options.LevelsBlack};
  return {options.BrightnessRed, options.ContrastRed, options.LevelsRed};
}

struct Value {
  std::string text;
  int setting;
};

// The value of now is one of those shown: it takes the place of the nearest.
std::vector<Value> valuesOf(const Series& series, int now) {
  std::vector<Value> values;
  for (const int value : series.values) {
    values.push_back({std::to_string(value), settingOf(series.part, value)});
  }
  const auto nearest = std::ranges::min_element(
      values, {}, [now](const Value& value) { return std::abs(value.setting - now); });
  if (nearest->setting == now) return values;
  const int code = series.part == Part::Levels ? now / 3 : (now + 200) / 2;
  const bool isChoice = settingOf(series.part, code) == now;
  *nearest = {isChoice ? std::to_string(code) : kNoNumber, now};
  return values;
}

Colour shadeOf(Ink ink, size_t shade) {
  if (ink == Ink::Red) return redOf(kRedDepths[shade]);
  const uint8_t grey = kGreys[shade];
  return {grey, grey, grey};
}

DotBox boxOf(int top, size_t column, size_t shade) {
  return {double(kLeft + static_cast<int>(column) * kPitch),
          double(top + kPatchesBelow + static_cast<int>(shade) * kPatchHeight), kPatchWidth,
          kPatchHeight, kWhite};
}

void addColumn(const Series& series, const Value& value, int now, const PageTones& tones,
               std::vector<TonePatch>& patches, int top, size_t column, InkTone tone) {
  partOf(tone, series.part) = value.setting;
  const ToneTable table(tone);
  for (size_t shade = 0; shade < kShades; ++shade) {
    const Colour colour = shadeOf(series.ink, shade);
    const uint8_t wanted = table.tone(colour.blue, colour.green, colour.red);
    const auto drawn = tones.nearest(wanted);
    if (!drawn) return;
    DotBox box = boxOf(top, column, shade);
    box.colour = drawn->colour;
    patches.push_back({series.option, value.text, series.ink, static_cast<int>(shade), wanted,
                       drawn->value, drawn->quarters, value.setting == now, box});
  }
}

int topOf(size_t series) {
  const int index = static_cast<int>(series);
  return series < 3 ? kBlackTop + index * kSeries : kRedTop + (index - 3) * kSeries;
}

void addSeries(PageWriter& writer, int top, const std::vector<TonePatch>& patches) {
  const bool named =
      std::ranges::any_of(patches, [](const TonePatch& patch) { return patch.value == kNoNumber; });
  writer.text(patches.front().option + (named ? "   def.: PrinterDefault" : ""), kLeft, top);
  for (const TonePatch& patch : patches) {
    if (patch.shade != 0) continue;
    const int middle = static_cast<int>(patch.box.left) + kPatchWidth / 2;
    writer.label(patch.value, middle, top + kLine);
    if (patch.now) {
      const int wide = widthOf(patch.value);
      writer.box(middle - wide / 2, top + kLine + kUnderline + 14, wide, 2,
                 patch.ink == Ink::Red ? kRed : kBlack);
    }
  }
}

// Cells of two dots, so that they are whole dots at 90, 180 and 360 dpi; and so far from
// the edges of these that they are no more where the page does not lie on whole dots.
void addPatch(DotDrawing& page, const TonePatch& patch) {
  constexpr int kCell = 2;
  constexpr double kClear = 0.24;
  constexpr std::array<std::array<int, 2>, 3> kCells{{{0, 0}, {1, 1}, {0, 1}}};
  if (patch.quarters > static_cast<int>(kCells.size())) page.boxes.push_back(patch.box);
  if (patch.quarters > static_cast<int>(kCells.size())) return;
  for (int top = 0; top < kPatchHeight; top += 2 * kCell) {
    for (int left = 0; left < kPatchWidth; left += 2 * kCell) {
      for (int i = 0; i < patch.quarters; ++i) {
        const auto& cell = kCells[static_cast<size_t>(i)];
        page.boxes.push_back({patch.box.left + left + cell[0] * kCell + kClear,
                              patch.box.top + top + cell[1] * kCell + kClear, kCell - 2 * kClear,
                              kCell - 2 * kClear, patch.box.colour});
      }
    }
  }
}

}  // namespace

std::vector<TonePatch> tonePatches(const tagOEMCFG& options) {
  const InkRules rules = compileInkRules(options);
  const PageTones black(rules, Ink::Black);
  const PageTones red(rules, Ink::Red);
  std::vector<TonePatch> patches;
  if (!black.nearest(0) || !red.nearest(0)) return patches;
  for (size_t i = 0; i < kAll.size(); ++i) {
    const Series& series = kAll[i];
    InkTone tone = toneNow(options, series.ink);
    const int now = partOf(tone, series.part);
    const std::vector<Value> values = valuesOf(series, now);
    for (size_t column = 0; column < values.size(); ++column) {
      addColumn(series, values[column], now, series.ink == Ink::Red ? red : black, patches,
                topOf(i), column, tone);
    }
  }
  return patches;
}

Drawn tonesPage(const PageSettings& settings) {
  const std::vector<TonePatch> patches = tonePatches(settings.options);
  if (patches.empty()) return "with these options one of the inks does not print";
  DotDrawing page = drawingOn(settings, "Velka: tones of the inks");
  PageWriter writer(page);
  writer.title("Which tones?");
  addPrintLines(writer, settings, "-o Resolution=180dpi");
  writer.line("Choose in a row the column whose four");
  writer.line("fields can be told apart best, and set");
  writer.line("option=number. Underlined: what is set");
  writer.line("now. One option, then make a new page.");
  constexpr size_t kPatchesOfSeries = size_t{kValues} * kShades;
  for (size_t i = 0; i < kAll.size(); ++i) {
    writer.write(kAll[i].ink == Ink::Red ? kRed : kBlack);
    const auto first = patches.begin() + static_cast<std::ptrdiff_t>(i * kPatchesOfSeries);
    addSeries(writer, topOf(i), {first, first + kPatchesOfSeries});
  }
  for (const TonePatch& patch : patches) addPatch(page, patch);
  return fitting(std::move(page), settings);
}

}  // namespace velka::calibration
