#include "orlo/LiteralEncoder.h"

#include <algorithm>
#include <utility>

namespace velka::orlotest {

namespace {

class Encoder {
 public:
  Encoder(const DotPage& page, Feed feed, ModeRow mode)
      : page_(page),
        front_(feed == Feed::Front),
        xdpi_(mode.dpi.horizontal),
        ydpi_(mode.dpi.vertical),
        mode_(mode.mode),
        p_(passesAt(mode.dpi.vertical)) {}

  LiteralResult unsplit() {
    if (front_) {
      firstFront();
    } else {
      firstBack();
    }
    return result_;
  }

  LiteralResult split() {
    if (B() == -1 && R() == -1) return result_;
    readsRed_ = false;
    if (!front_) colourMode3();
    if (B() != -1) {
      int64_t c = front_ ? B() : B() - 16 * p_;
      if (c != 0) move(c);
      firstBand(c);
      c = oneColour(c, true);
      if (R() != -1) {
        // Front feed forgets the row that the second pass went on; back feed not.
        const int64_t reverse = front_ ? R() - 28 * p_ - c : R() - c - (p_ - 1);
        if (reverse != 0) move(reverse);
      }
    }
    readsRed_ = true;
    readsBlack_ = false;
    if (R() == -1) return result_;
    int64_t c = front_ ? R() - 28 * p_ : R();
    if (B() == -1) {
      c = R();
      if (c != 0) move(c);
    }
    firstBand(c);
    oneColour(c, false);
    return result_;
  }

 private:
  [[nodiscard]] int64_t B() const { return page_.black.top; }
  [[nodiscard]] int64_t R() const { return page_.red.top; }

  void colourMode3() { result_.commands = std::move(result_.commands) + Bytes{0x1B, 0x72, 0x02}; }
  void move(int64_t rows) {
    result_.commands = std::move(result_.commands) + moveY(static_cast<int>(rows * 360 / ydpi_));
  }

  [[nodiscard]] bool inked(const Plane& plane, int64_t y) const {
    if (y < 0 || y >= page_.height) return false;
    for (int x = 0; x < page_.width; ++x)
      if (plane.bytes.at(static_cast<size_t>(y * page_.width + x)) != 255) return true;
    return false;
  }

  void firstFront() {
    const int64_t gap = 28 * p_;
    if (B() == -1 && R() == -1) return;
    int64_t target = R() - gap;
    const bool blackLeads = B() != -1 && B() < R() && R() - B() >= gap;
    if (R() == -1 || blackLeads) target = B();
    if (target != 0) move(target);
    firstBand(target);
    laterFront(target);
  }

  void laterFront(int64_t c) {
    const int64_t M = std::max(page_.black.bottom, page_.red.bottom);
    while (c <= M) {
      int64_t y = c;
      int64_t F = -1;
      while (true) {
        if (F == -1 && inked(page_.black, y + 18 * p_)) F = y + 18 * p_;
        if (inked(page_.red, y + 34 * p_)) {
          y += F == -1 ? 6 * p_ : std::min<int64_t>(F - y, 6 * p_);
          break;
        }
        if (F != -1 && y == F) break;
        if (y == M) {
          if (F != -1) break;
          return;
        }
        if (++y > M) return;
      }
      if (laterBand(y, c, c + 18 * p_)) return;
      c = y;
    }
  }

  void firstBack() {
    const int64_t gap = 16 * p_;
    if (B() == -1 && R() == -1) return;
    colourMode3();
    int64_t target = B() - gap;
    const bool redLeads = R() != -1 && B() > R() && B() - R() >= gap;
    if (B() == -1 || redLeads) target = R();
    if (target != 0) move(target);
    firstBand(target);
    laterBack(target);
  }

  void laterBack(int64_t c) {
    while (true) {
      int64_t next = -1;
      for (int64_t y = c + 6 * p_; y < page_.height && next == -1; ++y) {
        const bool redFound = inked(page_.red, y);
        const bool blackFound = y + 16 * p_ >= c + 34 * p_ && inked(page_.black, y + 16 * p_);
        if (redFound || blackFound) next = y;
      }
      if (next == -1) return;
      if (laterBand(next, c, -1)) return;
      c = next;
    }
  }

  // The bands of one colour after the first; gives the last one's base.
  int64_t oneColour(int64_t c, bool black) {
    const Plane& plane = black ? page_.black : page_.red;
    const int64_t firstSlot = black ? (front_ ? 0 : 16) : (front_ ? 28 : 0);
    const int64_t slots = black ? 18 : 6;
    endTest_ = false;
    for (int64_t row = c + (firstSlot + slots) * p_; row <= plane.bottom; ++row) {
      if (!inked(plane, row)) continue;
      const int64_t y = row - firstSlot * p_;
      laterBand(y, c, -1);
      c = y;
      row = c + (firstSlot + slots) * p_ - 1;
    }
    return c;
  }

  void firstBand(int64_t base) {
    result_.bases.push_back(base);
    for (int pass = 0; pass < static_cast<int>(p_); ++pass) {
      onePass(base + pass, -1);
      if (pass % 2 == 0 && p_ == 2) move(1);
    }
  }

  // True when the head has passed the bottom of the page.
  bool laterBand(int64_t y, int64_t c, int64_t blackFrom) {
    const int64_t s = y - (p_ - 1);
    if (s != c) move(s - c);
    result_.bases.push_back(y);
    for (int pass = 0; pass < static_cast<int>(p_); ++pass) {
      onePass(y + pass, blackFrom);
      result_.commands.push_back(0x0D);
      if (pass % 2 == 0 && p_ == 2) move(1);
    }
    result_.endedAtBottom = endTest_ && y + 34 * p_ + (p_ - 1) >= page_.height;
    return result_.endedAtBottom;
  }

  void onePass(int64_t r, int64_t blackFrom) {
    std::vector<Bytes> columns(static_cast<size_t>(page_.width + 11), Bytes{0, 0, 0});
    for (int x = 0; x < page_.width; ++x) {
      Bytes& column = columns[static_cast<size_t>(x)];
      for (int i = 0; i < 34; ++i) {
        const int64_t row = r + p_ * i;
        if (front_) {
          frontSlot(column, i, x, row, blackFrom);
        } else {
          backSlot(column, i, x, row);
        }
      }
    }
    sendRuns(columns);
  }

  static void setBit(Bytes& column, int byte, int bit) {
    column[static_cast<size_t>(byte)] = static_cast<uint8_t>(column[static_cast<size_t>(byte)] |
                                                             (1U << static_cast<unsigned>(bit)));
  }

  void frontSlot(Bytes& column, int i, int x, int64_t row, int64_t blackFrom) const {
    if (i <= 17 && readsBlack_ && row >= blackFrom && page_.isBlack(x, row))
      setBit(column, i / 8, 7 - i % 8);
    if (i >= 28 && readsRed_ && page_.isRed(x, row)) setBit(column, 2, 7 - (i - 10) % 8);
  }

  void backSlot(Bytes& column, int i, int x, int64_t row) const {
    if (i <= 5 && readsRed_ && page_.isRed(x, row)) setBit(column, 0, 7 - i);
    if (i >= 16 && readsBlack_ && page_.isBlack(x, row))
      setBit(column, (i - 10) / 8, 7 - (i - 10) % 8);
  }

  void sendRuns(const std::vector<Bytes>& columns) {
    const int d = xdpi_ / 60;
    const int most = 65535 / d * d;  // what a block counts, on 1/60 inch
    bool open = false;
    int left = 0;
    int right = 0;
    int blank = 0;
    for (int x = 0; x < page_.width; ++x) {
      if (open && x - left == most) {
        sendRun(columns, left, right);
        open = false;
        blank = 0;
      }
      if (columns[static_cast<size_t>(x)] == Bytes{0, 0, 0}) {
        ++blank;
        if (blank > 190 && open) {
          sendRun(columns, left, right);
          open = false;
          blank = 0;
        }
        continue;
      }
      if (!open) {
        open = true;
        left = x < d ? 0 : x / d * d;
        right = left;
      } else {
        right = x;
      }
      blank = 0;
    }
    if (open) sendRun(columns, left, right);
  }

  void sendRun(const std::vector<Bytes>& columns, int left, int right) {
    if (right - left < 10) {
      right = left + 10;
      if (!front_) right = std::min(right, page_.width - 1);
    }
    const float divisor = static_cast<float>(xdpi_) / 60.0F;
    const int position = static_cast<int>(static_cast<float>(left) / divisor);
    result_.commands = std::move(result_.commands) + moveX(position) +
                       block(mode_, {columns.begin() + left, columns.begin() + right + 1});
  }

  const DotPage& page_;
  bool front_;
  int xdpi_;
  int ydpi_;
  uint8_t mode_;
  int64_t p_;
  bool readsBlack_ = true;
  bool readsRed_ = true;
  bool endTest_ = true;
  LiteralResult result_;
};

}  // namespace

LiteralResult encodeLiterally(const DotPage& page, Feed feed, bool split, ModeRow mode) {
  Encoder encoder(page, feed, mode);
  return split ? encoder.split() : encoder.unsplit();
}

}  // namespace velka::orlotest
