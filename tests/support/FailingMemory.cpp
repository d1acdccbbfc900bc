#include "support/FailingMemory.h"

#include <cerrno>
#include <cstdlib>
#include <new>

namespace {

struct Plan {
  bool counts = false;
  size_t asked = 0;
  size_t first = 0;  // of those that fail, counted from 0
  size_t count = 0;
  long objects = 0;
};

thread_local Plan plan;

bool isToFail() noexcept {
  if (!plan.counts) return false;
  const size_t number = plan.asked++;
  if (number < plan.first || number - plan.first >= plan.count) return false;
  errno = ENOMEM;
  return true;
}

}  // namespace

extern "C" {
void* __real_malloc(size_t bytes);
void* __real_calloc(size_t count, size_t bytes);
void* __real_realloc(void* block, size_t bytes);

void* __wrap_malloc(size_t bytes) {
  return isToFail() ? nullptr : __real_malloc(bytes);
}
void* __wrap_calloc(size_t count, size_t bytes) {
  return isToFail() ? nullptr : __real_calloc(count, bytes);
}
void* __wrap_realloc(void* block, size_t bytes) {
  return isToFail() ? nullptr : __real_realloc(block, bytes);
}
}

void* operator new(size_t bytes, const std::nothrow_t& /*tag*/) noexcept {
  void* const block = std::malloc(bytes == 0 ? 1 : bytes);
  if (block != nullptr) ++plan.objects;
  return block;
}
void* operator new(size_t bytes) {
  void* const block = operator new(bytes, std::nothrow);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept {
  if (block != nullptr) --plan.objects;
  std::free(block);
}
void operator delete(void* block, size_t /*bytes*/) noexcept {
  operator delete(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
  operator delete(block);
}

namespace velka::testing {

FailingMemory::FailingMemory(size_t passed, size_t count) {
  plan = {true, 0, passed, passed == kNone ? 0 : count, 0};
}

FailingMemory::~FailingMemory() {
  plan.counts = false;
}

size_t FailingMemory::asked() const {
  return plan.asked;
}

long FailingMemory::objects() const {
  return plan.objects;
}

}  // namespace velka::testing
