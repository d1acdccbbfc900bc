// The block packer and the standard band encoder with any planes and rectangles. Blocks
// of rectangles on the plane are those of the literal packer; whole pages are read back.
#include <sys/mman.h>
#include <unistd.h>

#include <array>

#include "CommandReader.h"
#include "ESCPSML.h"
#include "Input.h"
#include "PreInc.h"
#include "escp/LoadedPlanes.h"
#include "reference/ReferenceEncoder.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

using namespace velka;
using namespace velka::fuzz;
using velka::testing::load;

reference::Separation anyPlanes(Input& input) {
  reference::Separation planes;
  planes.width = 1 + input.below(128);
  planes.height = 1 + input.below(128);
  const auto size = static_cast<size_t>(planes.width) * static_cast<size_t>(planes.height);
  planes.black = input.dots(size);
  planes.red = input.dots(size);
  return planes;
}

// Mostly near the planes; at times at the ends of the numbers, less their distance from
// each other, for a band is never wider than its memory.
_RECTL anyArea(Input& input, bool anywhere) {
  if (anywhere && input.byte() < 16) {
    const auto left = input.number<int32_t>();
    const auto top = input.number<int32_t>();
    const int64_t right = int64_t{left} + input.below(1000);
    return {left, top, static_cast<int32_t>(std::min<int64_t>(right, INT32_MAX)),
            input.number<int32_t>()};
  }
  const int left = input.below(140);
  const int top = input.below(140);
  constexpr int kHeights[] = {24, 48, 8, 72, 30, 1};
  return {left, top, left + input.below(140), top + input.oneOf(kHeights) - 1};
}

void pack(Input& input, CESCPSML& generator, const reference::Separation& planes) {
  _RECTL area = anyArea(input, true);
  const auto colour = static_cast<short>(input.byte() % 4);
  const bool two = area.bottom - int64_t{area.top} == 47;
  constexpr unsigned short kColumns[] = {0, 1, 3, 9};
  const unsigned short bytes = two ? uint16_t{3} : input.oneOf(kColumns);
  constexpr float kDivisors[] = {0.5F, 1.0F, 4.0F / 3.0F, 3.0F, 6.0F};
  const float divisor = input.oneOf(kDivisors);
  const int pass = input.byte() % 2;
  unsigned char* command = nullptr;
  unsigned length = 0;
  unsigned skip = 0;
  const bool made =
      generator.GetBlockDataCmd(0x27, bytes, area, colour, command, &length, &skip, divisor, pass);
  const Bytes block(command, command + length);
  std::free(command);
  require(made == (colour == 1 || colour == 2));
  // The literal packer knows rectangles that begin on the plane alone.
  if (!made || area.left < 0 || area.top < 0 || area.bottom < area.top || area.left > 1000 ||
      area.top > 1000)
    return;
  const auto wanted = reference::packBlock(planes, area, colour, {bytes, 0x27}, divisor, pass);
  require(block == wanted.command && skip == wanted.leadingSkip);
}

// A page of any rectangles, in the order that their keys give them.
void encode(Input& input, CESCPSML& generator, int file) {
  constexpr int16_t kDpi[] = {180, 360, 120, 60, 90, 80};
  constexpr int16_t kPins[] = {24, 48, 72, 8};
  CRectTree tree;
  tagOEMCFG options = {};
  _DEVMODE mode = {1, 180, 180, 0, 1};
  _OEMPDEV pdev = {};
  _DEVOBJ devobj = {&pdev, &mode, &options, 0};
  options.sHeadPins = input.oneOf(kPins);
  options.sEjectMode = static_cast<int16_t>(input.byte() % 6);
  options.SplitBlackRed = static_cast<int16_t>(input.flag() ? 1 : 0);
  options.sCopies = 1;
  pdev.devModeOut = {1, input.oneOf(kDpi), input.oneOf(kDpi), 0, 1};
  pdev.lInitialYOffset = input.below(300) - 20;
  pdev.dwCurPageNum = static_cast<uint32_t>(input.byte());
  pdev.pRectTree = &tree;
  generator.m_nBlackFlag = input.flag() ? 1 : 0;
  generator.m_nRedFlag = input.flag() ? 1 : 0;
  for (int bands = input.below(20); bands > 0; --bands) {
    const _RECTL area = anyArea(input, false);
    tree.insert(area, static_cast<unsigned long>(area.top), static_cast<unsigned long>(area.left));
  }
  require(ftruncate(file, 0) == 0 && lseek(file, 0, SEEK_SET) == 0);
  (void)generator.EncodeAndSend(&devobj, static_cast<short>(input.flag() ? 1 : 0));
  Bytes stream(static_cast<size_t>(std::max<off_t>(lseek(file, 0, SEEK_CUR), 0)));
  require(pread(file, stream.data(), stream.size(), 0) == static_cast<ssize_t>(stream.size()));
  decode::CommandReader reader(stream, decode::Model::Standard);
  while (reader.next()) {
  }
  require(!reader.fault());
}

}  // namespace

// What goes to the printer is kept in a file without a name.
int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  const int file = memfd_create("printer", MFD_CLOEXEC);
  return file >= 0 && dup2(file, STDOUT_FILENO) >= 0 ? 0 : 1;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const reference::Separation planes = anyPlanes(input);
  CESCPSML generator;
  load(generator, planes);
  for (int blocks = 1 + input.byte() % 8; blocks > 0; --blocks) pack(input, generator, planes);
  encode(input, generator, STDOUT_FILENO);
  return 0;
}
