#include "orlo/PrintingHead.h"

#include "PageReader.h"

namespace velka::orlotest {

using decode::Block;
using decode::Carriage;
using decode::CommandKind;
using decode::CommandReader;
using decode::Ink;
using decode::Model;

Paper printStream(std::span<const uint8_t> stream, Feed feed) {
  static_assert(orlotest::kUnitsPerInch == decode::kUnitsPerInch);
  const Model model = feed == Feed::Front ? Model::OrloFront : Model::OrloBack;
  CommandReader reader(stream, model);
  Carriage carriage;
  Paper paper;
  while (const auto command = reader.next()) {
    if (command->kind == CommandKind::FormFeed) ++paper.pages;
    if (command->kind == CommandKind::BitImage) {
      ++paper.blocks;
      const Block block{carriage.x,      carriage.y,    command->mode,
                        carriage.colour, command->data, command->offset};
      forEachDot(block, model, [&](Ink ink, int64_t x, int64_t y) {
        (ink == Ink::Red ? paper.red : paper.black).insert({y, x});
        ++paper.strikes;
      });
    }
    carriage.apply(*command);
  }
  if (reader.fault()) paper.complaint = reader.fault()->what;
  paper.headRow = carriage.y;
  return paper;
}

}  // namespace velka::orlotest
