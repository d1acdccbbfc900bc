#include "Carriage.h"

namespace velka::decode {

void Carriage::apply(const Command& command) {
  const int64_t moved = int64_t{command.value} * unit;
  switch (command.kind) {
    case CommandKind::Initialise:
      // The paper stays where it is.
      x = 0;
      unit = 10;
      colour = 0;
      lines = 0;
      break;
    case CommandKind::PageLength:
      lines = command.value;
      break;
    case CommandKind::SetUnit:
      unit = command.value;
      break;
    case CommandKind::PaperMove:
      y += moved;
      break;
    case CommandKind::PaperAdvance:
      y += int64_t{command.value} * (kUnitsPerInch / 180);
      break;
    case CommandKind::HeadTo:
      x = moved;
      break;
    case CommandKind::HeadBy:
      x += moved;
      break;
    case CommandKind::Colour:
      colour = command.value;
      break;
    case CommandKind::BitImage:
      x += int64_t{command.value} * command.mode.columnPitch;
      break;
    case CommandKind::CarriageReturn:
      x = 0;
      break;
    case CommandKind::FormFeed:
      x = 0;
      y = 0;
      break;
    case CommandKind::LineSpacing:
    case CommandKind::EjectMode:
    case CommandKind::FeedMode:
      break;
  }
}

}  // namespace velka::decode
