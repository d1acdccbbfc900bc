// Placement by any offset, and quarter turns: pixel by pixel the picture that they are
// to give, and nothing written behind a bitmap.
#include <optional>

#include "BmpProcessing.h"
#include "ExactPlacement.h"
#include "Input.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

struct Picture {
  int width;
  int height;
  uint32_t stride;
  Bytes bytes;

  Picture(int w, int h) : width(w), height(h), stride(static_cast<uint32_t>((w * 3 + 3) / 4 * 4)) {
    bytes.assign(size_t{stride} * static_cast<size_t>(h), 0xFF);
  }
  [[nodiscard]] BitmapView view() {
    BitmapView view = {bytes, stride};
    view.width = width;
    return view;
  }
  /// Where its three bytes start; null beside the picture.
  [[nodiscard]] const uint8_t* pixel(int64_t x, int64_t y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) return nullptr;
    return bytes.data() + static_cast<size_t>(y) * stride + static_cast<size_t>(x) * 3;
  }
};

bool same(const uint8_t* a, const uint8_t* b) {
  constexpr uint8_t kWhite[3] = {0xFF, 0xFF, 0xFF};
  return std::memcmp(a != nullptr ? a : kWhite, b != nullptr ? b : kWhite, 3) == 0;
}

int32_t anyOffset(Input& input) {
  return input.byte() < 8 ? input.number<int32_t>() : input.below(300) - 150;
}

Picture anyPicture(Input& input) {
  Picture picture(1 + input.below(128), 1 + input.below(128));
  picture.bytes = input.runs(picture.bytes.size(), 0xFF);
  return picture;
}

void placeExactly(Picture& source, Input& input, const PageOffset& offset) {
  Picture output(1 + input.below(128), 1 + input.below(128));
  placePageExactly(source.view(), output.view(), output.height, offset);
  for (int64_t y = 0; y < output.height; ++y)
    for (int64_t x = 0; x < output.width; ++x)
      require(same(output.pixel(x, y), source.pixel(x - offset.x, y - offset.y)));
}

// The original placement: what it writes lies above placedBytes, rows come whole or not.
void placeOriginally(Picture& source, Input& input, const PageOffset& offset) {
  Picture output(1 + input.below(128), 1 + input.below(128));
  BitmapView from = source.view();
  from.stored = from.stride * static_cast<size_t>(input.below(source.height + 1));
  const size_t written = placedBytes(from, output.view(), offset);
  require(written <= output.bytes.size() && written % output.stride == 0);
  placePage(from, output.view(), output.height, offset);
  require(std::all_of(output.bytes.begin() + static_cast<std::ptrdiff_t>(written),
                      output.bytes.end(), [](uint8_t byte) { return byte == 0xFF; }));
}

void turn(Picture& source, int turns) {
  unsigned char* bytes = nullptr;
  int64_t size = 0;
  int64_t width = 0;
  int64_t height = 0;
  require(CBmpProcessing().RotateImg(source.bytes.data(), source.width, source.height, &bytes,
                                     &size, &width, &height, 24, turns));
  const bool quarter = turns == 1 || turns == 3;
  require(width == (quarter ? source.height : source.width) &&
          height == (quarter ? source.width : source.height));
  Picture turned(static_cast<int>(width), static_cast<int>(height));
  require(static_cast<size_t>(size) == turned.bytes.size());
  turned.bytes.assign(bytes, bytes + size);
  std::free(bytes);
  for (int64_t y = 0; y < source.height; ++y)
    for (int64_t x = 0; x < source.width; ++x) {
      const int64_t right = source.width - 1 - x;
      const int64_t below = source.height - 1 - y;
      const uint8_t* const places[] = {turned.pixel(x, y), turned.pixel(y, right),
                                       turned.pixel(right, below), turned.pixel(below, x)};
      require(same(source.pixel(x, y), places[turns]));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  PageOffset offset;
  offset.x = anyOffset(input);
  offset.y = anyOffset(input);
  const int turns = input.byte() % 4;
  const auto sizes = input.take(16);
  Input shapes(sizes.data(), sizes.size());
  Picture source = anyPicture(input);
  placeExactly(source, shapes, offset);
  placeOriginally(source, shapes, offset);
  turn(source, turns);
  tagOEMCFG options = {};
  options.sHrzOffset = offset.x;
  options.sVtcOffset = offset.y;
  options.sHrzDir = turns - 1;
  options.sRotation = turns;
  (void)printOffset(options, {static_cast<int16_t>(1 + turns % 2), 360, 180, 0, 1});
  return 0;
}
