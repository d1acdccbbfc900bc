// What a process counted, written also where it ends at once: in a signal's handler, or in
// a child that must not run its parent's farewells. For coverage builds alone.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>

namespace {

// The library that fails calls (tests/faults), where it stands in front of this program, is
// to fail none of those that write the counts, nor to count them among the job's own. Looked
// for early, as a signal's handler may not.
void (*faultsEnd)() = nullptr;

[[gnu::constructor]] void findFaults() {
  faultsEnd = reinterpret_cast<void (*)()>(dlsym(RTLD_DEFAULT, "velkaFaultsEnd"));
}

// A limit on the size of files would end the process, or its counts.
void makeWay() {
  if (faultsEnd != nullptr) faultsEnd();
  const rlimit none = {RLIM_INFINITY, RLIM_INFINITY};
  setrlimit(RLIMIT_FSIZE, &none);
  std::signal(SIGXFSZ, SIG_IGN);
}

// Counts that cannot be written, for want of descriptors or another user's rights, are to
// leave no word among the program's own. Where no descriptor is left this takes one.
[[gnu::destructor]] void endQuietly() {
  makeWay();
  close(STDIN_FILENO);
  const int nothing = open("/dev/null", O_RDONLY);
  if (nothing >= 0) dup2(nothing, STDERR_FILENO);
}

}  // namespace

extern "C" {
void __gcov_dump();                   // NOLINT(bugprone-reserved-identifier): the compiler's
[[noreturn]] void __real__exit(int);  // NOLINT(bugprone-reserved-identifier): the linker's
int __real_raise(int);                // NOLINT(bugprone-reserved-identifier): the linker's

[[noreturn]] void __wrap__exit(int status) {  // NOLINT(bugprone-reserved-identifier)
  endQuietly();
  __gcov_dump();
  __real__exit(status);
}

int __wrap_raise(int signal) {  // NOLINT(bugprone-reserved-identifier)
  makeWay();
  __gcov_dump();
  return __real_raise(signal);
}
}
