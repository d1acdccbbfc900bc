#include "PageLimit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <span>

#include "CheckedMath.h"

namespace velka {
namespace {

constexpr uint64_t kLeast = uint64_t{1} << 30U;
constexpr uint64_t kMost = std::numeric_limits<uint32_t>::max();
constexpr unsigned kBitsPerPixel = 24;

struct Resolution {
  unsigned across = 0;
  unsigned down = 0;
};

// A choice's name, such as 180dpi or 360x180dpi; zeros for one that names no resolution.
Resolution resolutionOf(const char* choice) noexcept {
  Resolution r;
  if (std::sscanf(choice, "%5ux%5udpi", &r.across, &r.down) == 2) return r;
  if (std::sscanf(choice, "%5udpi", &r.across) == 1) return {r.across, r.across};
  return {};
}

// The highest that the PPD offers each way.
Resolution highestResolution(ppd_file_t* ppd) noexcept {
  constexpr unsigned kOfTheHead = 360;
  Resolution highest;
  const ppd_option_t* option = ppdFindOption(ppd, "Resolution");
  if (option != nullptr)
    for (const ppd_choice_t& choice :
         std::span(option->choices, static_cast<size_t>(std::max(option->num_choices, 0)))) {
      const Resolution r = resolutionOf(choice.choice);
      highest = {std::max(highest.across, r.across), std::max(highest.down, r.down)};
    }
  return highest.across == 0 || highest.down == 0 ? Resolution{kOfTheHead, kOfTheHead} : highest;
}

// Points in dots; none for a size that makes no sense.
uint32_t dotsOf(float points, unsigned dpi) noexcept {
  const double dots = std::ceil(static_cast<double>(points) / 72.0 * dpi);
  return dots > 0 && dots < 4294967295.0 ? static_cast<uint32_t>(dots) : 0;
}

uint64_t bytesOf(float width, float length, Resolution dpi) noexcept {
  const uint64_t stride = paddedRowBytes(dotsOf(width, dpi.across), kBitsPerPixel);
  return checkedMul(stride, dotsOf(length, dpi.down)).value_or(kMost);
}

}  // namespace

uint64_t PageSize::stride() const noexcept {
  return paddedRowBytes(width, bitsPerPixel);
}

bool PageSize::isAllowed() const noexcept {
  const uint64_t counted = paddedRowBytes(width, std::max(bitsPerPixel, kBitsPerPixel));
  const auto bytes = checkedMul(counted, height);
  return checkedMul32(stride(), height) && bytes && *bytes <= mostBytes;
}

uint64_t mostPageBytes(ppd_file_t* ppd, const cups_page_header2_t& header) noexcept {
  if (ppd == nullptr) return kLeast;
  const Resolution highest = highestResolution(ppd);
  const Resolution dpi = {std::min(header.HWResolution[0], highest.across),
                          std::min(header.HWResolution[1], highest.down)};
  uint64_t most = kLeast;
  for (const ppd_size_t& size :
       std::span(ppd->sizes, static_cast<size_t>(std::max(ppd->num_sizes, 0))))
    most = std::max(most, bytesOf(size.width, size.length, dpi));
  if (ppd->variable_sizes != 0)
    most = std::max(most, bytesOf(ppd->custom_max[0], ppd->custom_max[1], dpi));
  return std::min(most, kMost);
}

}  // namespace velka
