#include "HeaderCheck.h"

#include <array>

#include "BitImageMode.h"
#include "CommandBytes.h"
#include "HeaderFields.h"
#include "PageLimit.h"
#include "PreInc.h"

namespace velka {
namespace {

constexpr int kMostDpi = 360;
constexpr unsigned kSamples = 3;
constexpr unsigned kBitsPerSample = 8;
constexpr int kMostFormLines = 255;  // of 1/6 inch, in a byte

struct Reason {
  Trouble trouble;
  std::string_view name;
};

constexpr std::array<Reason, 5> kReasons = {{
    {Trouble::Colours, "velka-colors-error"},
    {Trouble::Resolution, "velka-resolution-error"},
    {Trouble::TooLarge, "velka-page-size-error"},
    {Trouble::TooLong, "velka-page-length-warning"},
    {Trouble::Copy, "velka-pdf-copy-error"},
}};

// Red, green and blue of a device, or of one of the usual profiles.
bool isRgb(int colourSpace) noexcept {
  return colourSpace == CUPS_CSPACE_RGB || colourSpace == CUPS_CSPACE_SRGB ||
         colourSpace == CUPS_CSPACE_ADOBERGB;
}

bool hasColours(const cups_page_header2_t& header) noexcept {
  return header.cupsBitsPerColor == kBitsPerSample &&
         header.cupsBitsPerPixel == kBitsPerSample * kSamples &&
         enumBits(header.cupsColorOrder) == CUPS_ORDER_CHUNKED &&
         isRgb(enumBits(header.cupsColorSpace));
}

struct HeadPair {
  int16_t across;
  int16_t down;
};

// The pair that the pages are sent at, in the 16 bits of the device records.
HeadPair sentResolution(const cups_page_header2_t& header) noexcept {
  if (header.HWResolution[0] >= kFirstScaledDpi) return {kMostDpi, kMostDpi};
  return {static_cast<int16_t>(header.HWResolution[0]),
          static_cast<int16_t>(header.HWResolution[1])};
}

// A pair that the table does not know at all has a mode without data.
bool headPrints(const cups_page_header2_t& header) noexcept {
  const HeadPair sent = sentResolution(header);
  const auto mode = columnBitImageMode(sent.down, sent.across);
  return mode && mode->bytesPerColumn > 0;
}

bool isAllowed(const cups_page_header2_t& header, uint64_t mostBytes) noexcept {
  const PageSize size = {header.cupsWidth, header.cupsHeight, header.cupsBitsPerPixel, mostBytes};
  return size.isAllowed() && header.cupsBytesPerLine <= mostBytes;
}

// The form in lines, as its command counts them.
bool fitsForm(const cups_page_header2_t& header) noexcept {
  const auto rows = static_cast<int32_t>(header.cupsHeight);
  const auto down = static_cast<int16_t>(header.HWResolution[1]);
  return pageLengthInLines(rows, down) <= kMostFormLines;
}

std::string pairText(unsigned first, unsigned second) {
  return std::to_string(first) + " x " + std::to_string(second);
}

std::string coloursText(const cups_page_header2_t& header) {
  return "it has " + std::to_string(header.cupsBitsPerPixel) + " bits a pixel in colour space " +
         std::to_string(enumBits(header.cupsColorSpace)) + ", order " +
         std::to_string(enumBits(header.cupsColorOrder)) +
         ", and 24 bits of chunked RGB are wanted: print the document itself, or with the "
         "queue's ColorModel";
}

}  // namespace

Trouble headerTrouble(const cups_page_header2_t& header, bool firstPage,
                      uint64_t mostBytes) noexcept {
  if (!hasColours(header)) return Trouble::Colours;
  if (firstPage && !headPrints(header)) return Trouble::Resolution;
  if (!isAllowed(header, mostBytes)) return Trouble::TooLarge;
  return fitsForm(header) ? Trouble::None : Trouble::TooLong;
}

std::string troubleText(Trouble trouble, const cups_page_header2_t& header, uint64_t page) {
  const std::string name = "Page " + std::to_string(page);
  switch (trouble) {
    case Trouble::Colours:
      return name + " cannot be printed: " + coloursText(header);
    case Trouble::Resolution:
      return name + " cannot be printed: the head has no mode for " +
             pairText(header.HWResolution[0], header.HWResolution[1]) +
             " dpi, choose one of the queue's resolutions";
    case Trouble::TooLarge:
      return name + " is not printed: its " + pairText(header.cupsWidth, header.cupsHeight) +
             " pixels are more than a page may take";
    case Trouble::TooLong:
      return name +
             " is longer than 42.5 inches, the longest form that the printer can be "
             "told: the paper behind it will not stand where a page begins";
    case Trouble::Copy:
    case Trouble::None:
      break;
  }
  return {};
}

std::string_view stateReason(Trouble trouble) noexcept {
  for (const Reason& reason : kReasons)
    if (reason.trouble == trouble) return reason.name;
  return {};
}

std::string allStateReasons() {
  std::string all;
  for (const Reason& reason : kReasons) {
    if (!all.empty()) all += ',';
    all += reason.name;
  }
  return all;
}

}  // namespace velka
