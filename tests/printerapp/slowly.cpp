// Preloaded into the application: a thread that it starts for a job comes to itself only after
// some seconds, as on a machine that is busy. Threads of clients, which are detached from the
// start, are as quick as ever.
#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <new>

namespace {

constexpr useconds_t kDelay = 2'500'000;

struct Start {
  void* (*routine)(void*);
  void* argument;
};

void* startLate(void* data) {
  const Start start = *std::unique_ptr<Start>(static_cast<Start*>(data));
  usleep(kDelay);
  return start.routine(start.argument);
}

}  // namespace

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                              void* (*routine)(void*), void* argument) {
  static const auto create =
      reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  if (attributes != nullptr) return create(thread, attributes, routine, argument);
  auto* start = new (std::nothrow) Start{routine, argument};
  return start == nullptr ? EAGAIN : create(thread, nullptr, startLate, start);
}
