// Reads a calibration page on the paper of a stream, as who printed it would.
//
//   marks KIND MODEL FILE [PPD OPTIONS]      whether each mark is on its place to a dot
//   registration MODEL FILE                  whether the numbers are those of printers astray
//   position MODEL FILE                      the offsets to set
//   tones MODEL OPTION VALUE BEFORE AFTER    whether VALUE now looks as its patches did before
//   colours MODEL FILE                       the bounds, by the ends of the red patches
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <span>

#include "MarkedOptions.h"
#include "Pages.h"
#include "Ppd.h"
#include "Readings.h"

namespace {

using namespace velka;
using namespace velka::calibration;
using namespace velka::calibrationtest;

constexpr int64_t kUnits = decode::kUnitsPerInch;

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
  if (static_cast<std::ptrdiff_t>(struck) != all || elsewhere != 0)
    complain("not as the page has them");
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
  return complaints() == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  return run({argv + 1, static_cast<size_t>(argc - 1)});
}
