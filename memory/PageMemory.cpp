#include "PageMemory.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace velka {
namespace {

// A hint: where it is not taken, small pages serve as well, only slower.
void preferLargePages(unsigned char* block, size_t bytes) noexcept {
  const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = reinterpret_cast<uintptr_t>(block);
  const uintptr_t first = (begin + page - 1) / page * page;
  const uintptr_t end = (begin + bytes) / page * page;
  if (first < end) madvise(block + (first - begin), end - first, MADV_HUGEPAGE);
}

}  // namespace

void keepFreedMemory() noexcept {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  // The log's thread would have 64 MiB of address space for itself, which under a limit are
  // the pages'.
  mallopt(M_ARENA_MAX, 1);
}

unsigned char* pageBytes(size_t bytes) noexcept {
  auto* block = static_cast<unsigned char*>(std::malloc(std::max<size_t>(bytes, 1)));
  if (block != nullptr) preferLargePages(block, bytes);
  return block;
}

}  // namespace velka
