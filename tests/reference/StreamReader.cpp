#include "reference/StreamReader.h"

#include <sstream>

namespace velka::reference {

namespace {

struct ModeRow {
  int mode;
  int bytesPerColumn;
  int dotsPerInch;
};

constexpr ModeRow modeRows[] = {
    {0, 1, 60},   {1, 1, 120}, {4, 1, 80},   {6, 1, 90},   {32, 3, 60},
    {33, 3, 120}, {38, 3, 90}, {39, 3, 180}, {40, 3, 360}, {41, 9, 180},
};

const ModeRow* findMode(int mode) {
  for (const ModeRow& row : modeRows) {
    if (row.mode == mode) {
      return &row;
    }
  }
  return nullptr;
}

size_t countDots(const std::vector<uint8_t>& data) {
  size_t dots = 0;
  for (const uint8_t byte : data) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      dots += (byte >> bit) & 1U;
    }
  }
  return dots;
}

// Positions are kept in 1/3600 inch.
class Reader {
 public:
  explicit Reader(const std::vector<uint8_t>& bytes) : bytes_(bytes) {}

  StreamContents read() {
    while (at_ < bytes_.size()) {
      if (!readCommand()) {
        contents_.malformedAt = at_;
        break;
      }
    }
    closePage(false);
    return contents_;
  }

 private:
  [[nodiscard]] bool has(size_t count) const { return bytes_.size() - at_ >= count; }
  [[nodiscard]] int byte(size_t i) const { return bytes_.at(at_ + i); }
  [[nodiscard]] int unsigned16(size_t i) const { return byte(i) + 256 * byte(i + 1); }
  [[nodiscard]] int signed16(size_t i) const {
    const int value = unsigned16(i);
    return value > 32767 ? value - 65536 : value;
  }

  bool take(CommandKind kind, size_t length, int value, int mode = 0) {
    contents_.commands.push_back({kind, at_, length, value, mode});
    at_ += length;
    return true;
  }

  bool readCommand() {
    switch (byte(0)) {
      case 0x0C:
        closePage(true);
        return take(CommandKind::FormFeed, 1, 0);
      case 0x0D:
        x_ = 0;
        return take(CommandKind::CarriageReturn, 1, 0);
      case 0x1B:
        return has(2) && readEscape();
      case 0x1D:
        return has(4) && byte(1) == 0x04 && byte(2) == 0x54 &&
               take(CommandKind::EjectMode, 4, byte(3));
      default:
        return false;
    }
  }

  bool readEscape() {
    switch (byte(1)) {
      case 0x40:
        initialise();
        return take(CommandKind::Initialise, 2, 0);
      case 0x32:
        return take(CommandKind::LineSpacing, 2, 0);
      case 0x43:
        return has(3) && take(CommandKind::PageLength, 3, byte(2));
      case 0x28:
        return has(5) && readParenthesis();
      case 0x24:
        return has(4) && moveTo(unsigned16(2));
      case 0x5C:
        return has(4) && moveAcross(signed16(2));
      case 0x72:
        return has(3) && selectColour(byte(2));
      case 0x2A:
        return has(5) && readBitImage();
      default:
        return false;
    }
  }

  bool readParenthesis() {
    const int length = unsigned16(3);
    if (byte(2) == 0x55 && length == 1 && has(6)) {
      unit_ = byte(5);
      return take(CommandKind::SetUnit, 6, unit_);
    }
    if (byte(2) == 0x76 && length == 2 && has(7)) {
      const int move = signed16(5);
      y_ += static_cast<int64_t>(move) * unit_;
      return take(CommandKind::VerticalMove, 7, move);
    }
    return false;
  }

  bool moveTo(int position) {
    x_ = static_cast<int64_t>(position) * unit_;
    return take(CommandKind::HorizontalAbsolute, 4, position);
  }

  bool moveAcross(int distance) {
    x_ += static_cast<int64_t>(distance) * unit_;
    return take(CommandKind::HorizontalRelative, 4, distance);
  }

  bool selectColour(int colour) {
    if (colour > 1) {
      return false;
    }
    colour_ = colour;
    return take(CommandKind::SelectColour, 3, colour);
  }

  bool readBitImage() {
    const ModeRow* row = findMode(byte(2));
    const int columns = unsigned16(3);
    if (row == nullptr) {
      return false;
    }
    const size_t dataLength =
        static_cast<size_t>(columns) * static_cast<size_t>(row->bytesPerColumn);
    if (!has(5 + dataLength)) {
      return false;
    }
    const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(at_ + 5);
    std::vector<uint8_t> data(first, first + static_cast<std::ptrdiff_t>(dataLength));
    addBlock(*row, columns, std::move(data));
    x_ += static_cast<int64_t>(columns) * 3600 / row->dotsPerInch;
    return take(CommandKind::BitImage, 5 + dataLength, columns, row->mode);
  }

  void addBlock(const ModeRow& row, int columns, std::vector<uint8_t> data) {
    const size_t dots = countDots(data);
    const auto colour = static_cast<size_t>(colour_);
    page_.dots.at(colour) += dots;
    contents_.dots.at(colour) += dots;
    page_.blocks.push_back({colour_, y_ / 10, x_ / 60, row.mode, columns, row.bytesPerColumn,
                            std::move(data), at_, dots});
  }

  void initialise() {
    x_ = 0;
    y_ = 0;
    unit_ = 10;
    colour_ = 0;
  }

  // An open page counts only once something was printed on it.
  void closePage(bool byFormFeed) {
    if (byFormFeed || !page_.blocks.empty()) {
      page_.ended = byFormFeed;
      contents_.pages.push_back(std::move(page_));
    }
    page_ = StreamPage{};
    x_ = 0;
    y_ = 0;
  }

  const std::vector<uint8_t>& bytes_;
  StreamContents contents_;
  StreamPage page_;
  size_t at_ = 0;
  int64_t x_ = 0;
  int64_t y_ = 0;
  int unit_ = 10;
  int colour_ = 0;
};

}  // namespace

std::string nameOf(CommandKind kind) {
  switch (kind) {
    case CommandKind::Initialise:
      return "initialise";
    case CommandKind::LineSpacing:
      return "line spacing";
    case CommandKind::PageLength:
      return "page length";
    case CommandKind::SetUnit:
      return "set unit";
    case CommandKind::VerticalMove:
      return "move down";
    case CommandKind::HorizontalAbsolute:
      return "move to";
    case CommandKind::HorizontalRelative:
      return "move right";
    case CommandKind::SelectColour:
      return "colour";
    case CommandKind::BitImage:
      return "bit image";
    case CommandKind::EjectMode:
      return "eject mode";
    case CommandKind::CarriageReturn:
      return "carriage return";
    case CommandKind::FormFeed:
      return "form feed";
  }
  return "unknown";
}

StreamContents readStream(const std::vector<uint8_t>& bytes) {
  return Reader(bytes).read();
}

std::string describe(const StreamContents& contents) {
  std::ostringstream text;
  for (const StreamCommand& command : contents.commands) {
    text << command.offset << ": " << nameOf(command.kind) << ' ' << command.value;
    if (command.kind == CommandKind::BitImage) {
      text << " columns, mode " << command.mode;
    }
    text << '\n';
  }
  if (contents.malformedAt) {
    text << *contents.malformedAt << ": no whole command\n";
  }
  return text.str();
}

}  // namespace velka::reference
