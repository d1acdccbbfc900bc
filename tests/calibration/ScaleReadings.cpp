// The pages whose lines are counted.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "PageSettings.h"
#include "PositionPage.h"
#include "Readings.h"
#include "RegistrationPage.h"

namespace velka::calibrationtest {
namespace {

using namespace velka::calibration;

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

Field fieldOf(const DotBox& first, const DotBox& last, bool down, int64_t around) {
  const auto units = [](double place) { return std::llround(place) * kFine; };
  const int64_t side = down ? 0 : around;
  const int64_t end = down ? around : 0;
  return {units(first.left) - side, units(first.top) - end, units(last.left + last.width) + side,
          units(last.top + last.height) + end};
}

// The number at which lines of both sides meet.
std::string readVernier(const std::vector<Dot>& dots, const Vernier& vernier) {
  const int64_t around = int64_t{vernier.steps} * vernier.step * kFine + kFine;
  const auto lines = [&](auto line, bool red) {
    return linesIn(
        dots, red,
        fieldOf(line(vernier, -vernier.steps), line(vernier, vernier.steps), vernier.down, around),
        vernier.down, kCoarse);
  };
  const auto fixed = lines(fixedLine, vernier.fixed == kRed);
  const auto moving = lines(movingLine, vernier.moving == kRed);
  const size_t wanted = 2 * static_cast<size_t>(vernier.steps) + 1;
  if (fixed.size() != wanted || moving.size() != wanted) {
    return std::to_string(fixed.size()) + " and " + std::to_string(moving.size()) + " lines";
  }
  std::vector<int64_t> apart;
  for (size_t i = 0; i < wanted; ++i) apart.push_back(std::abs(fixed[i] - moving[i]));
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

}  // namespace

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
  if (complaints() == 0) std::printf("all numbers are right\n");
}

namespace {

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
  const int64_t reference = std::llround(kReference * decode::kUnitsPerInch / 25.4);
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

}  // namespace

void tellPosition(const std::vector<Dot>& dots) {
  std::printf("%s %s\n", readScale(dots, false).c_str(), readScale(dots, true).c_str());
}

}  // namespace velka::calibrationtest
