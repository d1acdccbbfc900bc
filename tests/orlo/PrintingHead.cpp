#include "orlo/PrintingHead.h"

#include <map>

namespace velka::orlotest {

namespace {

// The slot of the head that the bit (0 the topmost of 24) of a column drives, and
// whether its ink is red. A slot is as high as the mode's dots are apart.
struct Nozzle {
  int slot;
  bool red;
};

Nozzle nozzleOf(int bit, Feed feed) {
  if (feed == Feed::Front) {
    // 18 black, a gap of 10, 6 red.
    return bit < 18 ? Nozzle{bit, false} : Nozzle{28 + (bit - 18), true};
  }
  // 6 red, a gap of 10, 18 black.
  return bit < 6 ? Nozzle{bit, true} : Nozzle{16 + (bit - 6), false};
}

// Columns and dots in an inch, by mode.
struct Pitch {
  int64_t columns;
  int64_t dots;
};
const std::map<uint8_t, Pitch>& pitches() {
  static const std::map<uint8_t, Pitch> table = {
      {0x20, {60, 180}},  {0x26, {90, 180}},  {0x21, {120, 180}},
      {0x27, {180, 180}}, {0x28, {360, 180}}, {0x00, {60, 60}},
      {0x04, {80, 60}},   {0x06, {90, 60}},   {0x01, {120, 60}}};
  return table;
}

class Printer {
 public:
  Printer(std::span<const uint8_t> stream, Feed feed) : stream_(stream), feed_(feed) {}

  Paper run() {
    while (at_ < stream_.size() && paper_.complaint.empty()) step();
    paper_.headRow = row_;
    return paper_;
  }

 private:
  uint8_t take() {
    if (at_ < stream_.size()) return stream_[at_++];
    paper_.complaint = "the stream ends within a command";
    return 0;
  }

  int take16() {
    const int low = take();
    return low + 256 * take();
  }

  void expect(std::initializer_list<uint8_t> bytes) {
    for (const uint8_t byte : bytes)
      if (take() != byte) paper_.complaint = "a parameter is not what it must be";
  }

  void step() {
    switch (take()) {
      case 0x0D:
        column_ = 0;
        break;
      case 0x0C:
        ++paper_.pages;
        newSheet_ = true;
        row_ = 0;
        column_ = 0;
        break;
      case 0x1B:
        escape();
        break;
      default:
        paper_.complaint = "a byte that starts no command";
    }
  }

  void escape() {
    switch (take()) {
      case '@':
      case '2':
        break;
      case 'C':
        take();
        break;
      case '(':
        parenthesis();
        break;
      case '$':
        column_ = take16() * unit_;
        break;
      case 'r':
        if (take() > 2) paper_.complaint = "an unknown colour mode";
        break;
      case '*':
        raster();
        break;
      default:
        paper_.complaint = "an unknown escape sequence";
    }
  }

  void parenthesis() {
    switch (take()) {
      case 'U':
        expect({1, 0});
        unit_ = take();
        break;
      case 'v':
        expect({2, 0});
        row_ += static_cast<int16_t>(take16()) * unit_;
        break;
      default:
        paper_.complaint = "an unknown parameterised sequence";
    }
  }

  void raster() {
    const auto pitch = pitches().find(take());
    if (pitch == pitches().end()) {
      paper_.complaint = "an unknown bit-image mode";
      return;
    }
    ++paper_.blocks;
    for (int n = take16(); n > 0 && paper_.complaint.empty(); --n) {
      for (int byte = 0; byte < 3; ++byte) strike(take(), 8 * byte, pitch->second);
      column_ += kUnitsPerInch / pitch->second.columns;
    }
  }

  void strike(uint8_t bits, int firstBit, Pitch pitch) {
    for (int i = 0; i < 8; ++i) {
      if ((bits & (0x80U >> static_cast<unsigned>(i))) == 0) continue;
      const Nozzle nozzle = nozzleOf(firstBit + i, feed_);
      const Dot dot = {row_ + nozzle.slot * (kUnitsPerInch / pitch.dots), column_};
      if (newSheet_) takeSheet();
      const bool isNew = (nozzle.red ? paper_.red : paper_.black).insert(dot).second;
      (nozzle.red ? paper_.redDots : paper_.blackDots) += isNew ? 1 : 0;
      ++paper_.strikes;
    }
  }

  void takeSheet() {
    newSheet_ = false;
    paper_.black.clear();
    paper_.red.clear();
  }

  std::span<const uint8_t> stream_;
  Feed feed_;
  size_t at_ = 0;
  Paper paper_;
  int64_t unit_ = 10;
  int64_t row_ = 0;
  int64_t column_ = 0;
  bool newSheet_ = false;
};

}  // namespace

Paper printStream(std::span<const uint8_t> stream, Feed feed) {
  return Printer(stream, feed).run();
}

}  // namespace velka::orlotest
