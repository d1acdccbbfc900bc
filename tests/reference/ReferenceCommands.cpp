#include "reference/ReferenceCommands.h"

#include <cmath>

#include "reference/ReferenceNumbers.h"

namespace velka::reference {

namespace {

constexpr uint8_t esc = 0x1B;
constexpr uint8_t gs = 0x1D;
constexpr uint8_t cr = 0x0D;
constexpr uint8_t ff = 0x0C;

uint8_t lowByte(uint32_t value) {
  return static_cast<uint8_t>(value & 0xFF);
}
uint8_t highByte(uint32_t value) {
  return static_cast<uint8_t>((value >> 8) & 0xFF);
}

// |dy| x scale / resolution in 32-bit signed arithmetic, its wrap-around spelt out.
int32_t scaled(int64_t dy, int scale, int resolution) {
  const auto product = static_cast<int32_t>(static_cast<uint32_t>(dy * scale));
  return static_cast<int32_t>(static_cast<int64_t>(product) / resolution);
}

// Which of '0' and '1' the page gets; `r` is its place in the cycle.
uint8_t cyclePlace(int mode, int16_t r, int first, int second) {
  if (mode == 2) {
    if (r == 0) {
      return 0x31;
    }
    if (0 < r && r <= first) {
      return 0x30;
    }
    return r > first ? 0x31 : 0x00;
  }
  if (r == 0) {
    return 0x30;
  }
  if (0 < r && r <= second) {
    return 0x31;
  }
  return r > second ? 0x30 : 0x00;
}

std::optional<BitImageMode> modeAt180(int printQuality) {
  switch (printQuality) {
    case 60:
      return BitImageMode{3, 32};
    case 90:
      return BitImageMode{3, 38};
    case 120:
      return BitImageMode{3, 33};
    case 180:
      return BitImageMode{3, 39};
    case 360:
      return BitImageMode{3, 40};
    default:
      return std::nullopt;
  }
}

std::optional<BitImageMode> modeAt60(int printQuality) {
  switch (printQuality) {
    case 60:
      return BitImageMode{1, 0};
    case 80:
      return BitImageMode{1, 4};
    case 90:
      return BitImageMode{1, 6};
    case 120:
      return BitImageMode{1, 1};
    default:
      return std::nullopt;
  }
}

std::optional<BitImageMode> modeOf24Pins(int yResolution, int printQuality) {
  if (yResolution == 180) {
    return modeAt180(printQuality);
  }
  if (yResolution == 360) {
    if (printQuality == 360) {
      return BitImageMode{3, 40};
    }
    return std::nullopt;
  }
  if (yResolution == 60) {
    return modeAt60(printQuality);
  }
  return BitImageMode{0, 0};
}

std::optional<BitImageMode> modeOf72PinsAt180(int yResolution) {
  if (yResolution == 180) {
    return BitImageMode{9, 41};
  }
  if (yResolution == 60 || yResolution == 360) {
    return std::nullopt;
  }
  return BitImageMode{0, 0};
}

}  // namespace

void append(Bytes& bytes, const Bytes& tail) {
  bytes.insert(bytes.end(), tail.begin(), tail.end());
}

Bytes startDocument(int orientation, int pageWidth, int pageHeight, int printQuality,
                    int yResolution) {
  double lines = 0.0;
  if (orientation == 1) {
    lines = static_cast<double>(pageHeight) / yResolution * 6.0;
  } else {
    lines = static_cast<double>(pageWidth) / printQuality * 6.0;
  }
  const auto n = static_cast<uint32_t>(truncate32(lines));  // longer pages wrap modulo 256
  return {esc, 0x40, esc, 0x32, esc, 0x43, lowByte(n)};
}

Bytes endDocument() {
  return {esc, 0x40};
}

Bytes endPage() {
  return {ff};
}

Bytes setUnit(int unit) {
  return {esc, 0x28, 0x55, 0x01, 0x00, lowByte(static_cast<uint32_t>(unit))};
}

std::optional<Bytes> xMove(int kind, float divisor, int x) {
  if (kind != 1 && kind != 2) {
    return std::nullopt;
  }
  const float position = static_cast<float>(x) / divisor;
  const auto v = static_cast<uint32_t>(truncate32(position));
  const uint8_t letter = kind == 1 ? 0x24 : 0x5C;
  return Bytes{esc, letter, lowByte(v), highByte(v)};
}

std::optional<Bytes> relativeYMove(int yResolution, int dy) {
  if (yResolution == 0) {
    return std::nullopt;
  }
  int32_t m = scaled(dy < 0 ? -static_cast<int64_t>(dy) : dy, 360, yResolution);
  const uint32_t k = (static_cast<uint32_t>(m) + 32766U) / 32767U;
  if (k == 0) {
    return Bytes{};
  }
  Bytes out(7 * static_cast<size_t>(k) + 1, 0);
  out.at(0) = cr;
  for (uint32_t i = 0; i < k; ++i) {
    const int32_t step = m < 32767 ? m : 32767;
    // A move back sends the whole rest, a move forward at most one step.
    const uint32_t value = dy < 0 ? 0U - static_cast<uint32_t>(m) : static_cast<uint32_t>(step);
    const Bytes command = {esc, 0x28, 0x76, 0x02, 0x00, lowByte(value), highByte(value)};
    for (size_t j = 0; j < command.size(); ++j) {
      out.at(1 + 3 * static_cast<size_t>(i) + j) = command.at(j);  // 7 bytes, 3 apart
    }
    m -= step;
  }
  return out;
}

std::optional<Bytes> advanceYMove(int yResolution, int dy) {
  if (yResolution == 0) {
    return std::nullopt;
  }
  int32_t m = scaled(dy, 180, yResolution);
  const int32_t k = static_cast<int32_t>((static_cast<int64_t>(m) + 254) / 255);
  Bytes out = {cr};
  for (int32_t i = 0; i < k; ++i) {
    const int32_t n = m < 255 ? m : 255;
    append(out, {esc, 0x4A, lowByte(static_cast<uint32_t>(n))});
    if (m >= 256) {
      m -= 255;
    }
  }
  return out;
}

Bytes ejectMode(const tagOEMCFG& options, uint32_t page) {
  const int mode = options.sEjectMode;
  uint8_t p = 0x00;
  if (mode == 0) {
    p = 0x30;
  } else if (mode == 1) {
    p = 0x31;
  } else if (mode == 2 || mode == 3) {
    const int sum = options.sEjectFirstCount + options.sEjectSecondCount;
    if (sum == 0) {
      return {};
    }
    const auto r = static_cast<int16_t>(page % static_cast<uint32_t>(sum));
    p = cyclePlace(mode, r, options.sEjectFirstCount, options.sEjectSecondCount);
  } else if (mode == 4) {
    return {};
  }
  return {gs, 0x04, 0x54, p};
}

std::optional<BitImageMode> bitImageMode(int headPins, int yResolution, int printQuality) {
  if (headPins == 24 || (headPins == 72 && printQuality != 180)) {
    return modeOf24Pins(yResolution, printQuality);
  }
  if (headPins == 72) {
    return modeOf72PinsAt180(yResolution);
  }
  return BitImageMode{0, 0};
}

Bytes blockHeader(int colour, int mode, uint32_t columns) {
  return {esc,
          0x72,
          lowByte(static_cast<uint32_t>(colour)),
          esc,
          0x2A,
          lowByte(static_cast<uint32_t>(mode)),
          lowByte(columns),
          highByte(columns)};
}

}  // namespace velka::reference
