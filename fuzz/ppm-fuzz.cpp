// Pixmaps as a file may hold them: header, pixels turned in place, rows of a page. The
// buffers are exactly as large as they are said to be.
#include "Input.h"
#include "PpmImage.h"
#include "rastovelka.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

void storeRows(std::span<const uint8_t> pixels, Input& shape) {
  const auto width = static_cast<uint32_t>(shape.below(200));
  const auto height = static_cast<uint32_t>(shape.below(200));
  const auto stride = static_cast<uint64_t>(shape.below(700));
  Bytes page(static_cast<size_t>(stride * static_cast<uint64_t>(shape.below(200))), 0x11);
  storePpmRows(pixels, width, height, page, stride);
  const uint64_t rows = stride == 0 ? 0 : std::min<uint64_t>(height, page.size() / stride);
  const uint64_t shown = std::min(pixelBytes(static_cast<int32_t>(width), 1), stride);
  for (uint64_t row = 0; row < rows; ++row)
    for (uint64_t at = 0; at < stride; ++at) {
      const uint8_t stored = page[static_cast<size_t>(row * stride + at)];
      const uint64_t from = row * kPixelBytes * width + at;
      const bool held = from < pixels.size() - pixels.size() % kPixelBytes;
      if (at >= shown)
        require(stored == 0x11);
      else
        require(stored == (held ? pixels[static_cast<size_t>(from)] : 0xFF));
    }
}

// Pixels that the size counts and the file holds have red and blue exchanged, whatever
// else is there stays.
void requireTurned(const Bytes& turned, const Bytes& file, const PpmHeader& header) {
  const uint64_t held = (file.size() - header.pixels) / kPixelBytes;
  const uint64_t counted = pixelBytes(header.width, header.height) / kPixelBytes;
  const auto end = header.pixels + static_cast<size_t>(std::min(held, counted) * kPixelBytes);
  for (size_t at = 0; at < file.size(); ++at) {
    const bool pixel = at >= header.pixels && at < end;
    const size_t channel = pixel ? (at - header.pixels) % kPixelBytes : 1;
    require(turned[at] == file[at + 2 - 2 * channel]);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const auto sizes = input.take(8);
  Input shape(sizes.data(), sizes.size());
  const auto text = input.take(size);
  const Bytes file(text.begin(), text.end());
  const PpmHeader header = readPpmHeader(file);
  require(header.width >= 0 && header.height >= 0 && header.pixels <= file.size());
  int width = -1;
  int height = -1;
  Bytes turned = file;
  const unsigned char* pixels =
      PpmBitmapData(turned.data(), static_cast<unsigned>(turned.size()), &width, &height);
  require((pixels != nullptr) == (header.pixels != 0));
  if (header.hasSize && !file.empty()) require(width == header.width && height == header.height);
  if (pixels == nullptr) return 0;
  require(pixels == turned.data() + header.pixels);
  requireTurned(turned, file, header);
  storeRows(std::span<const uint8_t>(file).subspan(header.pixels), shape);
  return 0;
}
