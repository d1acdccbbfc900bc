#include "exact/PlainPrinter.h"

namespace velka::exacttest {
namespace {

struct BitImage {
  int columnsPerInch;
  int rowsPerInch;
  int bytes;  // a column, on the standard head
};

std::optional<BitImage> bitImage(int mode) {
  switch (mode) {
    case 0x00:
      return BitImage{60, 60, 1};
    case 0x01:
      return BitImage{120, 60, 1};
    case 0x04:
      return BitImage{80, 60, 1};
    case 0x06:
      return BitImage{90, 60, 1};
    case 0x20:
      return BitImage{60, 180, 3};
    case 0x21:
      return BitImage{120, 180, 3};
    case 0x26:
      return BitImage{90, 180, 3};
    case 0x27:
      return BitImage{180, 180, 3};
    case 0x28:
      return BitImage{360, 180, 3};
    case 0x29:
      return BitImage{180, 180, 9};
    default:
      return std::nullopt;
  }
}

class Printer {
 public:
  Printer(std::span<const uint8_t> stream, Pins pins, const OnStrike& onStrike)
      : stream_(stream), pins_(pins), onStrike_(onStrike) {}

  PrintedJob run() {
    while (at_ < stream_.size() && !job_.fault) command();
    job_.rest = struck_;
    return job_;
  }

 private:
  int next() {
    if (at_ >= stream_.size()) {
      job_.fault = "cut off";
      return 0;
    }
    return stream_[at_++];
  }
  int nextWord() {
    const int low = next();
    return low | next() << 8;
  }

  void command() {
    const int byte = next();
    if (byte == 0x0D) {
      x_ = 0;
    } else if (byte == 0x0C) {
      endPage();
    } else if (byte == 0x1D) {
      if (next() != 4 || next() != 'T') job_.fault = "unknown GS";
      next();
    } else if (byte == 0x1B) {
      escape(next());
    } else {
      job_.fault = "unknown byte at " + std::to_string(at_ - 1);
    }
  }

  void escape(int letter) {
    switch (letter) {
      case '@':
        unit_ = 10;
        x_ = 0;
        colour_ = 0;
        break;
      case '2':
        break;
      case 'C':
        page_.formLines = formLines_ = next();
        break;
      case '(':
        parenthesis();
        break;
      case '$':
        x_ = int64_t{nextWord()} * unit_;
        break;
      case 'r':
        colour_ = next();
        inPass_ = -1;
        break;
      case '*':
        block();
        break;
      default:
        job_.fault = "unknown ESC at " + std::to_string(at_ - 1);
    }
  }

  void parenthesis() {
    const int letter = next();
    const int length = nextWord();
    if (letter == 'U' && length == 1) {
      unit_ = next();
    } else if (letter == 'v' && length == 2) {
      const int distance = static_cast<int16_t>(nextWord());
      y_ += int64_t{distance} * unit_;
      ++page_.moves;
      if (distance < 0 && !goingBack_) ++page_.movesBack;
      goingBack_ = distance < 0;
      page_.farthest = std::max(page_.farthest, y_);
      inPass_ = -1;
    } else {
      job_.fault = "unknown ESC ( at " + std::to_string(at_ - 1);
    }
  }

  void block() {
    const auto image = bitImage(next());
    const int columns = nextWord();
    if (!image || job_.fault) {
      job_.fault = "bad block at " + std::to_string(at_);
      return;
    }
    if (inPass_ != colour_) ++page_.passes;
    inPass_ = colour_;
    const int bytes = pins_ == Pins::Standard ? image->bytes : 3;
    for (int column = 0; column < columns; ++column, x_ += 3600 / image->columnsPerInch)
      for (int i = 0; i < bytes; ++i) strikeByte(next(), i * 8, 3600 / image->rowsPerInch);
  }

  void strikeByte(int byte, int firstBit, int pitch) {
    for (int i = 0; i < 8; ++i)
      if ((byte & 0x80 >> i) != 0) strike(firstBit + i, pitch);
  }

  void strike(int bit, int pitch) {
    int ink = colour_ == 1 ? 1 : 0;
    int slot = bit;
    if (pins_ == Pins::OrloFront) {
      ink = bit < 18 ? 0 : 1;
      slot = bit < 18 ? bit : bit + 10;
    } else if (pins_ == Pins::OrloBack) {
      ink = bit < 6 ? 1 : 0;
      slot = bit < 6 ? bit : bit + 10;
    }
    struck_ = true;
    goingBack_ = false;
    onStrike_(job_.pages.size(), {ink, y_ + int64_t{slot} * pitch, x_});
  }

  void endPage() {
    page_.bytes = at_ - pageStart_;
    page_.lastStand = y_;
    if (page_.formLines == 0) page_.formLines = formLines_;
    job_.pages.push_back(std::move(page_));
    page_ = {};
    struck_ = false;
    pageStart_ = at_;
    x_ = y_ = 0;
    inPass_ = -1;
  }

  std::span<const uint8_t> stream_;
  Pins pins_;
  const OnStrike& onStrike_;
  PrintedJob job_;
  PrintedPage page_;
  size_t at_ = 0;
  size_t pageStart_ = 0;
  int64_t x_ = 0;
  int64_t y_ = 0;
  int64_t unit_ = 10;
  int colour_ = 0;
  int formLines_ = 0;
  int inPass_ = -1;  // the colour of the pass under way
  bool struck_ = false;
  bool goingBack_ = false;
};

}  // namespace

PrintedJob printOut(std::span<const uint8_t> stream, Pins pins, const OnStrike& strike) {
  return Printer(stream, pins, strike).run();
}

PrintedJob printOut(std::span<const uint8_t> stream, Pins pins) {
  std::vector<std::map<Spot, int>> struck;
  PrintedJob job = printOut(stream, pins, [&](size_t page, const Spot& spot) {
    if (struck.size() <= page) struck.resize(page + 1);
    ++struck[page][spot];
  });
  struck.resize(job.pages.size());
  for (size_t i = 0; i < struck.size(); ++i) job.pages[i].struck = std::move(struck[i]);
  return job;
}

}  // namespace velka::exacttest
