// A program that outlives SIGTERM and fails where one of its calls is said to have been
// interrupted that no signal interrupts.
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>

namespace {

constexpr int kCalls = 20;

extern "C" void goOn(int /*signal*/) {}

}  // namespace

int main() {
  struct sigaction handler = {};
  handler.sa_handler = goOn;
  sigaction(SIGTERM, &handler, nullptr);
  for (int call = 0; call < kCalls; ++call)
    if (syscall(SYS_getppid) < 0) return 1;
  return 0;
}
