#include "pdfcopy/FailingNew.h"

#include <cstdlib>
#include <new>

namespace velka::testing {

bool memoryIsGone = false;

}  // namespace velka::testing

// In the place of the library's own, for the whole test program; apart from all that
// uses them, so that the compiler pairs none of them with its own.
void* operator new(std::size_t size) {
  void* memory = velka::testing::memoryIsGone ? nullptr : std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
