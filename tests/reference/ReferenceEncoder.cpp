#include "reference/ReferenceEncoder.h"

#include <optional>

namespace velka::reference {

namespace {

constexpr int blackColour = 1;
constexpr int redColour = 2;

// One call of the page encoder; a split page makes two, the second for red.
class PageEncoder {
 public:
  PageEncoder(const Separation& planes, const PageSetting& setting, GeneratorState& state,
              BitImageMode mode)
      : planes_(planes),
        setting_(setting),
        state_(state),
        mode_(mode),
        xDivisor_(static_cast<float>(setting.printQuality) / 60.0F) {}

  bool initialOffset() {
    if (state_.initialYOffset == 0) {
      return true;
    }
    redY_ = static_cast<uint32_t>(state_.initialYOffset);
    return yMoveWithUnit(state_.initialYOffset);
  }

  bool bands(const std::vector<_RECTL>& rectangles, bool withBlack, bool withRed) {
    size_t first = 0;
    while (first < rectangles.size()) {
      size_t end = first;
      while (end < rectangles.size() && rectangles.at(end).top == rectangles.at(first).top) {
        ++end;
      }
      const std::vector<_RECTL> band(rectangles.begin() + static_cast<std::ptrdiff_t>(first),
                                     rectangles.begin() + static_cast<std::ptrdiff_t>(end));
      const size_t before = page_.size();
      if (withBlack && !colourOfBand(band, blackColour, blackY_)) {
        return false;
      }
      if (page_.size() != before) {
        redY_ = blackY_;
      }
      if (withRed && !colourOfBand(band, redColour, redY_)) {
        return false;
      }
      first = end;
    }
    return true;
  }

  bool yMoveWithUnit(int dy) {
    append(page_, setUnit(10));
    const std::optional<Bytes> move = relativeYMove(setting_.yResolution, dy);
    if (!move) {
      return false;
    }
    append(page_, *move);
    return true;
  }

  void add(const Bytes& bytes) { append(page_, bytes); }
  [[nodiscard]] const Bytes& page() const { return page_; }
  [[nodiscard]] uint32_t blackY() const { return blackY_; }

 private:
  bool colourOfBand(const std::vector<_RECTL>& band, int colour, uint32_t& currentY) {
    const int passes = setting_.yResolution == 360 ? 2 : 1;
    for (int pass = 0; pass < passes; ++pass) {
      const size_t before = page_.size();
      for (const _RECTL& area : band) {
        if (!encodeBlock(area, colour, currentY, pass)) {
          return false;
        }
      }
      // The odd rows lie one pixel lower.
      if (passes == 2 && pass == 0 && page_.size() != before && !yMoveWithUnit(1)) {
        return false;
      }
    }
    return true;
  }

  bool encodeBlock(const _RECTL& area, int colour, uint32_t& currentY, int pass) {
    const Block block = packBlock(planes_, area, colour, mode_, xDivisor_, pass);
    bool& started = colour == redColour ? state_.redStarted : state_.blackStarted;
    if (block.command.empty()) {
      started = false;
      return true;
    }
    started = true;
    if (!moveToBand(area, colour, currentY)) {
      return false;
    }
    // Red over black starts one pixel higher, whether or not black had two passes.
    if (colour == redColour && state_.blackStarted && pass == 0 && !yMoveWithUnit(-1)) {
      return false;
    }
    append(page_, setUnit(60));
    const std::optional<Bytes> xPosition =
        xMove(1, xDivisor_, static_cast<int>(block.leadingSkip) + area.left);
    if (!xPosition) {
      return false;
    }
    append(page_, *xPosition);
    append(page_, block.command);
    return true;
  }

  bool moveToBand(const _RECTL& area, int colour, uint32_t& currentY) {
    if (currentY >= static_cast<uint32_t>(area.top)) {
      return true;
    }
    int dy = area.top - static_cast<int>(currentY);
    if (colour == redColour && currentY == 0) {
      dy = area.top - static_cast<int>(currentY) - state_.yCorrection;
    }
    currentY = static_cast<uint32_t>(area.top);
    return yMoveWithUnit(dy);
  }

  const Separation& planes_;
  const PageSetting& setting_;
  GeneratorState& state_;
  BitImageMode mode_;
  float xDivisor_;
  Bytes page_;
  uint32_t blackY_ = 0;
  uint32_t redY_ = 0;
};

// Drops the bands above the first red row; at least one stays.
void dropBandsAboveRed(std::vector<_RECTL>& rectangles, int firstRedRow) {
  while (true) {
    const _RECTL rect = rectangles.front();
    const bool contains = rect.top <= firstRedRow && firstRedRow <= rect.bottom;
    const bool hasNext = rectangles.size() > 1;
    const bool nextAtOrBelow = hasNext && rectangles.at(1).top >= firstRedRow;
    if (contains || nextAtOrBelow) {
      return;
    }
    if (!(rect.bottom < firstRedRow && hasNext)) {
      return;
    }
    rectangles.erase(rectangles.begin());
  }
}

// Copies that are not collated follow their page at once.
void sendCopies(const PageSetting& setting, const Bytes& pageCommands, GeneratorState& state,
                Bytes& out) {
  const int copies = setting.options.sCopies;
  if (copies <= 1) {
    return;
  }
  append(state.copyBuffer, pageCommands);
  if (setting.collate) {
    append(state.copyBuffer, endPage());
    return;
  }
  for (int copy = 1; copy < copies; ++copy) {
    append(out, state.copyBuffer);
    append(out, endPage());
  }
  state.copyBuffer.clear();
}

bool sendSplitPage(const Separation& planes, const PageSetting& setting, GeneratorState& state,
                   BitImageMode mode, Bytes& out) {
  PageEncoder blackHalf(planes, setting, state, mode);
  if (!blackHalf.initialOffset() || !blackHalf.bands(planes.bands, planes.blackFlag, false)) {
    return false;
  }
  blackHalf.add(ejectMode(setting.options, setting.pageNumber));
  std::vector<_RECTL> kept = planes.bands;
  dropBandsAboveRed(kept, state.firstRedRow);
  state.yCorrection = kept.front().top;
  const int reverse = static_cast<int>(blackHalf.blackY()) - kept.front().top;
  if (!blackHalf.yMoveWithUnit(-reverse)) {
    return false;
  }
  append(out, blackHalf.page());

  PageEncoder redHalf(planes, setting, state, mode);
  if (!redHalf.initialOffset() || !redHalf.bands(kept, false, planes.redFlag)) {
    return false;
  }
  append(out, redHalf.page());
  append(out, endPage());

  Bytes pageCommands = blackHalf.page();
  append(pageCommands, redHalf.page());
  sendCopies(setting, pageCommands, state, out);
  return true;
}

}  // namespace

bool encodeAndSend(const Separation& planes, const PageSetting& setting, GeneratorState& state,
                   Bytes& out) {
  if (planes.bands.empty()) {
    return false;
  }
  const std::optional<BitImageMode> mode =
      bitImageMode(setting.options.sHeadPins, setting.yResolution, setting.printQuality);
  if (!mode) {
    return false;
  }
  if (!planes.blackFlag && !planes.redFlag) {
    return false;
  }
  if (setting.options.SplitBlackRed == 1) {
    return sendSplitPage(planes, setting, state, *mode, out);
  }
  PageEncoder encoder(planes, setting, state, *mode);
  if (!encoder.initialOffset() || !encoder.bands(planes.bands, planes.blackFlag, planes.redFlag)) {
    return false;
  }
  encoder.add(ejectMode(setting.options, setting.pageNumber));
  append(out, encoder.page());
  append(out, endPage());
  sendCopies(setting, encoder.page(), state, out);
  return true;
}

void sendEndOfJob(const tagOEMCFG& options, GeneratorState& state, Bytes& out) {
  for (int copy = 1; copy < options.sCopies; ++copy) {
    append(out, state.copyBuffer);
  }
  state.copyBuffer.clear();
  append(out, endDocument());
}

}  // namespace velka::reference
