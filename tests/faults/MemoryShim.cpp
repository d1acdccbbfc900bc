// The allocation functions of the fault shim.
#include <dlfcn.h>

#include <new>

#include "Forwarding.h"

using velka::testing::behind;
using velka::testing::failedWith;
using velka::testing::Function;
using velka::testing::judge;
using velka::testing::Verdict;

#ifdef VELKA_SANITIZED
// A sanitizer's own forms stand behind these, and it wants to see each block.
template <typename... Arguments>
static void* madeBehind(Function function, Arguments... arguments) noexcept {
  return reinterpret_cast<void* (*)(Arguments...)>(behind(function))(arguments...);
}
#define LIBRARY_MALLOC(size) madeBehind(Function::Malloc, size)
#define LIBRARY_CALLOC(count, size) madeBehind(Function::Calloc, count, size)
#define LIBRARY_REALLOC(block, size) madeBehind(Function::Realloc, block, size)
#else
// The C library's own names, for which nobody needs to be asked.
extern "C" void* __libc_malloc(size_t);
extern "C" void* __libc_calloc(size_t, size_t);
extern "C" void* __libc_realloc(void*, size_t);
#define LIBRARY_MALLOC(size) __libc_malloc(size)
#define LIBRARY_CALLOC(count, size) __libc_calloc(count, size)
#define LIBRARY_REALLOC(block, size) __libc_realloc(block, size)
#endif

extern "C" {

void* malloc(size_t size) noexcept {
  if (judge(Function::Malloc, CALLER, size) != Verdict::Pass) return failedWith<void*>(nullptr);
  return LIBRARY_MALLOC(size);
}
void* calloc(size_t count, size_t size) noexcept {
  if (judge(Function::Calloc, CALLER, count * size) != Verdict::Pass)
    return failedWith<void*>(nullptr);
  return LIBRARY_CALLOC(count, size);
}
void* realloc(void* block, size_t size) noexcept {
  if (judge(Function::Realloc, CALLER, size) != Verdict::Pass) return failedWith<void*>(nullptr);
  return LIBRARY_REALLOC(block, size);
}

}  // extern "C"

// The C++ library's own way to throw, found when it is needed: the shim is preloaded into
// the shell as well, which has none.
[[noreturn]] static void throwBadAlloc() {
  const auto thrower =
      reinterpret_cast<void (*)()>(dlsym(RTLD_DEFAULT, "_ZSt17__throw_bad_allocv"));
  thrower();
  __builtin_unreachable();
}

static void* newBlock(Function kind, size_t size) {
  return reinterpret_cast<void* (*)(size_t)>(behind(kind))(size);
}

// Both count as one; the forms that do not throw ask these.
void* operator new(size_t size) {  // NOLINT(misc-new-delete-overloads): what frees stays
  if (judge(Function::New, CALLER, size) != Verdict::Pass) throwBadAlloc();
  return newBlock(Function::New, size);
}
void* operator new[](size_t size) {  // NOLINT(misc-new-delete-overloads)
  if (judge(Function::New, CALLER, size) != Verdict::Pass) throwBadAlloc();
  return newBlock(Function::NewArray, size);
}
