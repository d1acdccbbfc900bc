#include "PageMemory.h"

#include <malloc.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace velka {
namespace {

constexpr uintptr_t kLargePage = uintptr_t{2} << 20U;

// A hint: where it is not taken, small pages serve as well, only slower.
void preferLargePages(unsigned char* block, size_t bytes) noexcept {
  const auto begin = reinterpret_cast<uintptr_t>(block);
  const uintptr_t first = (begin + kLargePage - 1) / kLargePage * kLargePage;
  const uintptr_t end = (begin + bytes) / kLargePage * kLargePage;
  if (first < end) madvise(block + (first - begin), end - first, MADV_HUGEPAGE);
}

}  // namespace

void keepFreedMemory() noexcept {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

unsigned char* pageBytes(size_t bytes) noexcept {
  auto* block = static_cast<unsigned char*>(std::malloc(std::max<size_t>(bytes, 1)));
  if (block != nullptr) preferLargePages(block, bytes);
  return block;
}

}  // namespace velka
