#include "CommandText.h"

#include <array>
#include <cstdlib>

#include "TextFormat.h"

namespace velka::decode {
namespace {

constexpr int64_t kUnitsPerLine = kUnitsPerInch / 6;

std::string colourText(int32_t colour) {
  constexpr std::array<const char*, 3> kTexts{"black", "red", "black and red at once"};
  return std::string("print in ") + kTexts.at(static_cast<size_t>(colour));
}

std::string paperText(const Command& command, int64_t units, const Carriage& before) {
  std::string text = format("paper %s %.3f mm, to %.3f mm", units < 0 ? "back" : "on",
                            millimetres(std::abs(units)), millimetres(before.y + units));
  if (command.overwritten > 0) {
    text += format(" (overwrote %zu moves before it)", command.overwritten);
  }
  return text;
}

std::string blockText(const Command& command, const Carriage& before) {
  return format("block of %d columns, %.0f x %.0f dpi, %d dots high, mode %d, at %.3f, %.3f mm",
                command.value, static_cast<double>(kUnitsPerInch) / command.mode.columnPitch,
                static_cast<double>(kUnitsPerInch) / command.mode.dotPitch,
                8 * command.mode.bytesPerColumn, command.mode.code, millimetres(before.x),
                millimetres(before.y));
}

std::string ejectText(int32_t parameter) {
  const bool printable = parameter > ' ' && parameter < 0x7F;
  return printable ? format("eject mode %c", parameter) : format("eject mode %02X", parameter);
}

std::string feedText(int32_t feed) {
  if (feed == 'F') return "feed paper from the front";
  if (feed == 'B') return "feed paper from the back";
  return format("feed paper in mode %02X", feed);
}

std::string pageText(int32_t lines) {
  const int64_t units = lines * kUnitsPerLine;
  return format("page length %d lines, %.1f mm", lines, millimetres(units));
}

}  // namespace

std::string spellingOf(const Command& command) {
  switch (command.kind) {
    case CommandKind::Initialise:
      return "ESC @";
    case CommandKind::LineSpacing:
      return "ESC 2";
    case CommandKind::PageLength:
      return "ESC C";
    case CommandKind::SetUnit:
      return "ESC ( U";
    case CommandKind::PaperMove:
      return "ESC ( v";
    case CommandKind::PaperAdvance:
      return "ESC J";
    case CommandKind::HeadTo:
      return "ESC $";
    case CommandKind::HeadBy:
      return "ESC \\";
    case CommandKind::Colour:
      return "ESC r";
    case CommandKind::BitImage:
      return "ESC *";
    case CommandKind::EjectMode:
      return "GS EOT T";
    case CommandKind::FeedMode:
      return "ESC EM";
    case CommandKind::CarriageReturn:
      return "CR";
    case CommandKind::FormFeed:
      return "FF";
  }
  return "?";
}

std::string meaningOf(const Command& command, const Carriage& before) {
  const int64_t moved = int64_t{command.value} * before.unit;
  switch (command.kind) {
    case CommandKind::Initialise:
      return "initialise";
    case CommandKind::LineSpacing:
      return format("line spacing %.3f mm", millimetres(kUnitsPerLine));
    case CommandKind::PageLength:
      return pageText(command.value);
    case CommandKind::SetUnit:
      return format("unit %.4f mm (%d/3600 inch)", millimetres(command.value), command.value);
    case CommandKind::PaperMove:
      return paperText(command, moved, before);
    case CommandKind::PaperAdvance:
      return paperText(command, int64_t{command.value} * (kUnitsPerInch / 180), before);
    case CommandKind::HeadTo:
      return format("head to %.3f mm", millimetres(moved));
    case CommandKind::HeadBy:
      return format("head %s %.3f mm, to %.3f mm", moved < 0 ? "left" : "right",
                    millimetres(std::abs(moved)), millimetres(before.x + moved));
    case CommandKind::Colour:
      return colourText(command.value);
    case CommandKind::BitImage:
      return blockText(command, before);
    case CommandKind::EjectMode:
      return ejectText(command.value);
    case CommandKind::FeedMode:
      return feedText(command.value);
    case CommandKind::CarriageReturn:
      return "head to the left edge";
    case CommandKind::FormFeed:
      return "end of the page";
  }
  return "";
}

std::string lineOf(const Command& command, const Carriage& before) {
  return format("%9zu %6zu  %-9s ", command.offset, command.size, spellingOf(command).c_str()) +
         meaningOf(command, before);
}

}  // namespace velka::decode
