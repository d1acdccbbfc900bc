#include "RasterInput.h"

#include <cerrno>

namespace velka {
namespace {

// libcups tries these again by itself.
bool isPassing(int error) noexcept {
  return error == EINTR || error == EAGAIN;
}

}  // namespace

template <typename Read>
bool RasterInput::attempt(Read read) noexcept {
  if (raster_ == nullptr || error_ != 0) return false;
  errno = 0;
  if (read()) return true;
  if (!isPassing(errno)) error_ = errno;
  return false;
}

bool RasterInput::nextHeader(cups_page_header2_t& header) noexcept {
  return attempt([&] { return cupsRasterReadHeader2(raster_, &header) != 0; });
}

bool RasterInput::nextLine(std::span<uint8_t> line) noexcept {
  return attempt([&] {
    return cupsRasterReadPixels(raster_, line.data(), static_cast<unsigned>(line.size())) != 0;
  });
}

void RasterInput::leave() noexcept {
  if (error_ == 0) error_ = ENOMEM;
}

}  // namespace velka
