// Reads a calibration page on the paper of a stream, as who printed it would.
//
//   marks KIND MODEL FILE [PPD OPTIONS]      whether each mark is on its place to a dot
//   registration MODEL FILE                  whether the numbers are those of printers astray
//   position MODEL FILE                      the offsets to set
//   tones MODEL OPTION VALUE BEFORE AFTER    whether VALUE now looks as its patches did before
//   colours MODEL FILE                       the bounds, by the ends of the red patches
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <span>

#include "ColoursPage.h"
#include "MarkedOptions.h"
#include "Pages.h"
#include "PositionPage.h"
#include "Ppd.h"
#include "PrintedPage.h"
#include "RegistrationPage.h"
#include "TonesPage.h"

namespace {

using namespace velka;
using namespace velka::calibration;
using namespace velka::calibrationtest;

constexpr int64_t kUnits = decode::kUnitsPerInch;
constexpr int64_t kCoarse = kUnits / 180;
constexpr int64_t kFine = kUnits / 360;

int failures = 0;

void complain(const std::string& text) {
  (void)std::fprintf(stderr, "%s\n", text.c_str());
  ++failures;
}

// Which marks lie on the dots of a drawing: none, an ink's, or a tone's, whose dots are
// anywhere.
enum class Mark : uint8_t { None, Black, Red, Tone };

Mark markOf(Colour colour) {
  if (colour == kBlack) return Mark::Black;
  return colour == kRed ? Mark::Red : Mark::Tone;
}

using Cell = std::pair<int64_t, int64_t>;

std::map<Cell, Mark> marksOf(const DotDrawing& page) {
  std::map<Cell, Mark> marks;
  for (const DotBox& box : page.boxes) {
    for (auto y = std::llround(box.top); y < std::llround(box.top + box.height); ++y) {
      for (auto x = std::llround(box.left); x < std::llround(box.left + box.width); ++x) {
        marks[{x, y}] = markOf(box.colour);
      }
    }
  }
  return marks;
}

void compareMarks(const DotDrawing& page, const std::vector<Dot>& dots) {
  std::map<Cell, Mark> marks = marksOf(page);
  const int64_t pitch = kUnits / page.dpi;
  size_t struck = 0;
  size_t elsewhere = 0;
  std::map<Cell, bool> hit;
  for (const Dot& dot : dots) {
    const auto mark = marks.find({dot.x / pitch, dot.y / pitch});
    const Mark wanted = mark == marks.end() ? Mark::None : mark->second;
    const bool right = dot.red ? wanted == Mark::Red : wanted == Mark::Black;
    if (dot.x % pitch != 0 || dot.y % pitch != 0 || (!right && wanted != Mark::Tone)) ++elsewhere;
    if (right && hit.insert({mark->first, true}).second) ++struck;
  }
  const auto all = std::ranges::count_if(marks, [](const auto& mark) {
    return mark.second == Mark::Black || mark.second == Mark::Red;
  });
  std::printf("%zu of %zd dots on their places, %zu elsewhere\n", struck, all, elsewhere);
  if (static_cast<std::ptrdiff_t>(struck) != all || elsewhere != 0) ++failures;
}

PageSettings settingsFrom(std::span<char*> names) {
  if (names.size() < 2) return {};
  view::Problem problem;
  const view::PpdFile ppd = view::openPpd(names[0], problem);
  if (!ppd) {
    complain(*problem);
    return {};
  }
  markOptions(ppd.get(), names[1]);
  return settingsOf(ppd.get());
}

void checkMarks(const char* kind, const std::vector<Dot>& dots, const PageSettings& settings) {
  const Page* page = pageNamed(kind);
  if (page == nullptr) return complain("no such page");
  const Drawn drawn = page->draw(settings);
  if (const auto* why = std::get_if<std::string>(&drawn)) return complain(*why);
  compareMarks(std::get<DotDrawing>(drawn), dots);
}

Field fieldOf(const DotBox& first, const DotBox& last, bool down, int64_t around) {
  const auto units = [](double place) { return std::llround(place) * kFine; };
  const int64_t side = down ? 0 : around;
  const int64_t end = down ? around : 0;
  return {units(first.left) - side, units(first.top) - end, units(last.left + last.width) + side,
          units(last.top + last.height) + end};
}

// The number at which lines of both sides meet.
std::string readVernier(const std::vector<Dot>& dots, const Vernier& vernier) {
  const int64_t around = vernier.steps * vernier.step * kFine + kFine;
  const auto lines = [&](auto line, bool red) {
    return linesIn(
        dots, red,
        fieldOf(line(vernier, -vernier.steps), line(vernier, vernier.steps), vernier.down, around),
        vernier.down, kCoarse);
  };
  const auto fixed = lines(fixedLine, vernier.fixed == kRed);
  const auto moving = lines(movingLine, vernier.moving == kRed);
  const size_t count = 2 * static_cast<size_t>(vernier.steps) + 1;
  if (fixed.size() != count || moving.size() != count) {
    return std::to_string(fixed.size()) + " and " + std::to_string(moving.size()) + " lines";
  }
  std::vector<int64_t> apart;
  for (size_t i = 0; i < count; ++i) apart.push_back(std::abs(fixed[i] - moving[i]));
  const auto best = std::ranges::min_element(apart) - apart.begin();
  return std::to_string(best - vernier.steps);
}

// Lines of the passes at one end, so that the others' do not come in.
std::string readBetweens(const std::vector<Dot>& dots, const Betweens& betweens) {
  int64_t nearest = INT64_MAX;
  std::string number = "nothing";
  for (int i = -betweens.steps; i <= betweens.steps; ++i) {
    const DotBox upper = upperLine(betweens, i);
    const DotBox lower = lowerLine(betweens, i);
    DotBox right = middleLine(betweens, i);
    const auto outer = linesIn(dots, false, fieldOf(upper, lower, true, 0), true, kFine);
    right.top = upper.top;
    right.height = betweens.apart + 1;
    const auto inner = linesIn(dots, false, fieldOf(right, right, true, 8 * kFine), true, kFine);
    if (outer.size() != 2 || inner.size() != 1) {
      return std::to_string(outer.size()) + " and " + std::to_string(inner.size()) + " lines";
    }
    const int64_t off = std::abs(2 * inner[0] - outer[0] - outer[1]);
    if (off < nearest) number = std::to_string(i);
    nearest = std::min(nearest, off);
  }
  return number;
}

void expectReading(const char* field, const std::string& number, int steps) {
  if (number != std::to_string(steps)) {
    complain(std::string(field) + " astray by " + std::to_string(steps) + " reads " + number);
  }
}

// The page's dots where a page in the middle of wider paper has them.
std::vector<Dot> aligned(std::vector<Dot> dots, const DotDrawing& page) {
  if (dots.empty()) return dots;
  const auto left = std::ranges::min(page.boxes, {}, &DotBox::left).left;
  const auto top = std::ranges::min(page.boxes, {}, &DotBox::top).top;
  const int64_t right = std::ranges::min(dots, {}, &Dot::x).x - std::llround(left) * kFine;
  const int64_t down = std::ranges::min(dots, {}, &Dot::y).y - std::llround(top) * kFine;
  for (Dot& dot : dots) {
    dot.x -= right;
    dot.y -= down;
  }
  return dots;
}

void checkRegistration(const std::vector<Dot>& printed) {
  const std::vector<Dot> dots = aligned(printed, std::get<DotDrawing>(registrationPage({})));
  const RegistrationFields fields = registrationFields();
  for (int steps = -10; steps <= 10; ++steps) {
    const int64_t way = steps * kCoarse;
    expectReading("red across", readVernier(astray(dots, {.redRight = way}), fields.across), steps);
    expectReading("red along", readVernier(astray(dots, {.redDown = way}), fields.along), steps);
    expectReading("second pass across",
                  readVernier(astray(dots, {.secondRight = way}), fields.passesAcross), steps);
    if (std::abs(steps) > fields.passesAlong.steps) continue;
    expectReading("second pass along",
                  readBetweens(astray(dots, {.secondDown = way}), fields.passesAlong), steps);
  }
  if (failures == 0) std::printf("all numbers are right\n");
}

// Tenths of a millimetre of a scale's lines, in order.
std::vector<int> scaleNumbers() {
  std::vector<int> tenths;
  for (int i = -10 * kFarthest; i <= 10 * kFarthest; i += 5) {
    if (i % 10 == 0 || std::abs(i) < 10 * kHalves) tenths.push_back(i);
  }
  return tenths;
}

// Runs of a single dot in each row (or column), which letters do not have.
std::map<int64_t, std::vector<int64_t>> singleDots(const std::vector<Dot>& dots, bool down) {
  std::map<int64_t, std::vector<int64_t>> rows;
  for (const Dot& dot : dots) rows[down ? dot.x : dot.y].push_back(down ? dot.y : dot.x);
  for (auto& [row, places] : rows) {
    std::ranges::sort(places);
    std::vector<int64_t> single;
    for (size_t i = 0; i < places.size(); ++i) {
      const bool before = i > 0 && places[i] - places[i - 1] <= kCoarse;
      const bool after = i + 1 < places.size() && places[i + 1] - places[i] <= kCoarse;
      if (!before && !after) single.push_back(places[i]);
    }
    places = single;
  }
  return rows;
}

// The scale's number at the reference on a ruler that lies at the paper's edge.
std::string readScale(const std::vector<Dot>& dots, bool down) {
  const std::vector<int> numbers = scaleNumbers();
  const int64_t reference = std::llround(kReference * kUnits / 25.4);
  for (const auto& [row, places] : singleDots(dots, down)) {
    if (places.size() != numbers.size()) continue;
    size_t best = 0;
    for (size_t i = 0; i < places.size(); ++i) {
      if (std::abs(places[i] - reference) < std::abs(places[best] - reference)) best = i;
    }
    return std::to_string(numbers[best]);
  }
  return "no scale";
}

void tellPosition(const std::vector<Dot>& dots) {
  std::printf("%s %s\n", readScale(dots, false).c_str(), readScale(dots, true).c_str());
}

// The share of a patch's inner dots that an ink strikes.
double coverage(const std::vector<Dot>& dots, const DotBox& box, bool red) {
  constexpr double kEdge = 3;
  const Field inner{std::llround(box.left + kEdge) * kCoarse,
                    std::llround(box.top + kEdge) * kCoarse,
                    std::llround(box.left + box.width - kEdge) * kCoarse,
                    std::llround(box.top + box.height - kEdge) * kCoarse};
  const auto struck = std::ranges::count_if(
      dots, [&](const Dot& dot) { return dot.red == red && inner.holds(dot); });
  const auto all = (inner.right - inner.left) / kCoarse * ((inner.bottom - inner.top) / kCoarse);
  return static_cast<double>(struck) / static_cast<double>(all);
}

void compareTones(const std::string& option, const std::string& value,
                  const std::vector<Dot>& before, const std::vector<Dot>& after) {
  constexpr double kAlike = 0.035;
  // Where nearly all dots are struck, error diffusion takes rows until it leaves one out.
  constexpr double kDark = 0.9;
  constexpr double kAlikeInTheDark = 0.07;
  const std::vector<TonePatch> patches = tonePatches(defaultOemdev[0]);
  int changed = 0;
  int compared = 0;
  for (const TonePatch& patch : patches) {
    if (patch.option != option || patch.value != value) continue;
    const auto now = std::ranges::find_if(patches, [&](const TonePatch& other) {
      return other.option == option && other.shade == patch.shade && other.now;
    });
    const bool red = patch.ink == Ink::Red;
    const double promised = coverage(before, patch.box, red);
    const double kept = coverage(after, now->box, red);
    std::printf("%s shade %d: %.3f promised, %.3f kept\n", option.c_str(), patch.shade, promised,
                kept);
    if (std::abs(promised - kept) > (promised < kDark ? kAlike : kAlikeInTheDark))
      complain(option + "=" + value + " is another tone");
    if (std::abs(kept - coverage(before, now->box, red)) > kAlike) ++changed;
    ++compared;
  }
  if (compared != 4 || changed < 2) complain(option + "=" + value + " changes nothing");
}

// The ink of most of a patch's dots.
bool isStruckRed(const std::vector<Dot>& dots, const DotBox& box) {
  return coverage(dots, box, true) > coverage(dots, box, false);
}

void tellColours(const std::vector<Dot>& dots) {
  for (const ColourRow& row : colourRows(defaultOemdev[0])) {
    if (row.option.empty()) continue;
    std::vector<std::string> red;
    for (const ColourPatch& patch : row.patches) {
      if (isStruckRed(dots, patch.box)) red.push_back(patch.number);
    }
    const bool least = row.option == "RedMinValue";
    const std::string number = red.empty() ? "none" : least ? red.front() : red.back();
    std::printf("%s%s=%s", least ? "" : " ", row.option.c_str(), number.c_str());
  }
  std::printf("\n");
}

// Each patch in the ink that the page has it in.
void checkInks(const std::vector<Dot>& dots, const tagOEMCFG& options) {
  int wrong = 0;
  for (const ColourRow& row : colourRows(options)) {
    for (const ColourPatch& patch : row.patches) {
      const double red = coverage(dots, patch.box, true);
      const double black = coverage(dots, patch.box, false);
      const bool asMeant = patch.ink == Ink::Red     ? red > 0 && black == 0
                           : patch.ink == Ink::Black ? black > 0 && red == 0
                                                     : red == 0 && black == 0;
      if (!asMeant) ++wrong;
    }
  }
  if (wrong > 0) complain(std::to_string(wrong) + " patches in another ink");
}

std::vector<Dot> dotsOf(const char* file, const char* model) {
  const auto known = decode::modelNamed(model);
  auto dots = known ? readDots(file, *known) : std::nullopt;
  if (!dots) complain(std::string(file) + ": no page");
  return dots.value_or(std::vector<Dot>{});
}

int run(std::span<char*> words) {
  const std::string what = words.size() > 2 ? words[0] : "";
  if (what == "marks" && words.size() >= 4) {
    const auto dots = dotsOf(words[3], words[2]);
    const PageSettings settings = settingsFrom(words.subspan(4));
    checkMarks(words[1], dots, settings);
    if (std::string(words[1]) == "colours") checkInks(dots, settings.options);
  } else if (what == "registration") {
    checkRegistration(dotsOf(words[2], words[1]));
  } else if (what == "position") {
    tellPosition(dotsOf(words[2], words[1]));
  } else if (what == "colours") {
    tellColours(dotsOf(words[2], words[1]));
  } else if (what == "tones" && words.size() == 6) {
    compareTones(words[2], words[3], dotsOf(words[4], words[1]), dotsOf(words[5], words[1]));
  } else {
    return 2;
  }
  return failures == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  return run({argv + 1, static_cast<size_t>(argc - 1)});
}
