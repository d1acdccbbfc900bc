// Public operations of pages from the PDF that do not log. They are declared in
// rastovelka.h.
#include <sys/stat.h>

#include <algorithm>
#include <limits>

#include "CheckedMath.h"
#include "GrowingBuffer.h"
#include "OwnFile.h"
#include "PageCount.h"
#include "PpmImage.h"
#include "rastovelka.h"

namespace velka {
namespace {

void swapRedAndBlue(std::span<uint8_t> pixels) noexcept {
  for (size_t i = 0; i + kPixelBytes <= pixels.size(); i += kPixelBytes)
    std::swap(pixels[i], pixels[i + 2]);
}

uint64_t fileBytes(const UniqueFd& file) noexcept {
  struct stat status = {};
  return file && fstat(file.get(), &status) == 0 ? static_cast<uint64_t>(status.st_size) : 0;
}

}  // namespace

}  // namespace velka

int GetPpmFilePagesBits(const char* pdfPath) noexcept {
  return velka::countDigits(pdfPath, {velka::pageLimits.counting, Canceled}).digits;
}

void InitPdfProcessOemPDEV(unsigned int stride, int width, int height) noexcept {
  const auto rows = static_cast<uint32_t>(std::max(height, 0));
  const uint32_t size = velka::checkedMul32(stride, rows).value_or(0);
  g_oemPDEV.bmInfoHeader.biSizeImage = size;
  g_oemPDEV.dwBufSize = size;
  g_oemPDEV.bmInfoHeader.biHeight = height;
  g_oemPDEV.bmInfoHeader.biWidth = width;
  g_oemPDEV.srcGdiInfo.szlPhysSize = {width, height};
  g_oemPDEV.srcGdiInfo.ulHorzRes = static_cast<uint32_t>(width);
  g_oemPDEV.srcGdiInfo.ulVertRes = static_cast<uint32_t>(height);
}

void PpmFileData(const char* path, unsigned char** buffer, unsigned int* size) noexcept {
  if (buffer == nullptr || size == nullptr) return;
  const velka::UniqueFd file = velka::openOwnFile(path);
  const uint64_t bytes = velka::fileBytes(file);
  if (!file || bytes > std::numeric_limits<uint32_t>::max()) return;
  velka::MallocBytes contents = bytes == 0 ? nullptr : velka::zeroedBytes(bytes);
  if (bytes != 0 && contents == nullptr) return;
  // What cannot be read is not there.
  *size = static_cast<uint32_t>(velka::readAll(file.get(), {contents.get(), bytes}));
  if (contents != nullptr) *buffer = contents.release();
}

unsigned char* PpmBitmapData(unsigned char* buffer, unsigned int size, int* width,
                             int* height) noexcept {
  if (buffer == nullptr || size == 0) return nullptr;
  const velka::PpmHeader header = velka::readPpmHeader({buffer, size});
  if (header.hasSize && width != nullptr && height != nullptr) {
    *width = header.width;
    *height = header.height;
  }
  if (header.pixels == 0) return nullptr;
  const std::span<uint8_t> pixels(buffer + header.pixels, size - header.pixels);
  const uint64_t count = static_cast<uint64_t>(header.width) * static_cast<uint64_t>(header.height);
  // Never past the file, whatever its size line promises.
  velka::swapRedAndBlue(pixels.first(std::min(count, pixels.size() / 3) * 3));
  return buffer + header.pixels;
}
