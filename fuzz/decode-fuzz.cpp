// Feeds any bytes to every part of the decoder, as each model. Whatever it finds that
// cannot be ends the program.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "CommandText.h"
#include "DotGrid.h"
#include "ModelGuess.h"
#include "PageCheck.h"
#include "PageReader.h"
#include "StreamStats.h"

namespace {

using namespace velka::decode;

void require(bool holds) {
  if (!holds) std::abort();
}

// Commands lie end to end and reach to the fault or the end.
void readCommands(Bytes stream, Model model) {
  CommandReader reader(stream, model);
  Carriage carriage;
  size_t end = 0;
  while (const auto command = reader.next()) {
    require(command->offset == end && command->size > 0);
    require(!lineOf(*command, carriage).empty());
    end += command->size;
    carriage.apply(*command);
  }
  require(end == (reader.fault() ? reader.fault()->offset : stream.size()));
}

void drawPages(Bytes stream, Model model) {
  constexpr Paper kPaper{4000, 4000};
  PageReader reader(stream, model);
  uint64_t pages = 0;
  while (const auto page = reader.next()) {
    pages += page->ended ? 1 : 0;
    Grid grid;
    grid.add(*page);
    const Area area = inkedArea(*page, model, grid);
    require(area.left <= area.right && area.top <= area.bottom);
    const PageFlaws flaws = checkPage(*page, model);
    require(flaws.any() == !textOf(flaws).empty());
    const auto counts = countCells(*page, model, grid, kPaper);
    require(counts.has_value());
    const auto all = static_cast<uint64_t>(cellsIn(grid, kPaper));
    for (size_t ink = 0; ink < 2; ++ink) {
      require(counts->dots.at(ink) <= counts->covered.at(ink) && counts->covered.at(ink) <= all);
    }
  }
  require(readStats(stream, model, {}, {kPaper.width, true}).pages == pages);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes stream(data, size);
  require(!guessModel(stream).why.empty());
  for (const Model model : {Model::Standard, Model::OrloFront, Model::OrloBack}) {
    readCommands(stream, model);
    drawPages(stream, model);
  }
  return 0;
}
