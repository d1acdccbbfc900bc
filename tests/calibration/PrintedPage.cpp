#include "PrintedPage.h"

#include <set>

#include "Files.h"

namespace velka::calibrationtest {

std::optional<std::vector<Dot>> readDots(const std::string& file, decode::Model model) {
  std::vector<uint8_t> stream;
  if (view::readFile(file, stream)) return std::nullopt;
  decode::PageReader reader(stream, model);
  const auto page = reader.next();
  if (!page || reader.next() || reader.fault()) return std::nullopt;
  std::vector<Dot> dots;
  for (const decode::Block& block : page->blocks) {
    decode::forEachDot(block, model, [&](decode::Ink ink, int64_t x, int64_t y) {
      dots.push_back({x, y, ink == decode::Ink::Red});
    });
  }
  return dots;
}

std::vector<Dot> astray(const std::vector<Dot>& dots, const Astray& how) {
  constexpr int64_t kRow = 10;
  std::vector<Dot> moved = dots;
  for (Dot& dot : moved) {
    const bool second = dot.y / kRow % 2 != 0;
    dot.x += (dot.red ? how.redRight : 0) + (second ? how.secondRight : 0);
    dot.y += (dot.red ? how.redDown : 0) + (second ? how.secondDown : 0);
  }
  return moved;
}

std::vector<int64_t> linesIn(const std::vector<Dot>& dots, bool red, const Field& field, bool down,
                             int64_t pitch) {
  std::set<int64_t> places;
  for (const Dot& dot : dots) {
    if (dot.red == red && field.holds(dot)) places.insert(down ? dot.y : dot.x);
  }
  std::vector<int64_t> lines;
  int64_t last = INT64_MIN / 2;
  for (const int64_t place : places) {
    if (place - last > pitch) lines.push_back(place);
    last = place;
  }
  return lines;
}

}  // namespace velka::calibrationtest
