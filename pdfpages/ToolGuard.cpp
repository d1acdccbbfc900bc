#include "ToolGuard.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace velka {
namespace {

constexpr int kFilterGone = SIGTERM;

extern "C" void killGroup(int /*signal*/) {
  kill(0, SIGKILL);
}

void unblock(int signal) noexcept {
  sigset_t one = {};
  sigemptyset(&one);
  sigaddset(&one, signal);
  sigprocmask(SIG_UNBLOCK, &one, nullptr);
}

// Asked for first, so that no end comes in between.
void watch(pid_t filter) noexcept {
  std::signal(kFilterGone, killGroup);
  unblock(kFilterGone);
  prctl(PR_SET_PDEATHSIG, kFilterGone);
  if (getppid() != filter) killGroup(kFilterGone);
}

[[noreturn]] void endAs(int status) noexcept {
  if (!WIFSIGNALED(status)) _exit(WEXITSTATUS(status));
  // A second core would be one of the filter's memory.
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  std::signal(WTERMSIG(status), SIG_DFL);
  unblock(WTERMSIG(status));
  kill(getpid(), WTERMSIG(status));
  _exit(kNoGuard);
}

[[noreturn]] void guard(pid_t tool) noexcept {
  int status = 0;
  while (waitpid(tool, &status, 0) != tool)
    if (errno != EINTR) _exit(kNoGuard);
  endAs(status);
}

}  // namespace

void becomeGuardedTool(pid_t filter) noexcept {
  setpgid(0, 0);
  watch(filter);
  const pid_t tool = fork();
  if (tool < 0) _exit(kNoGuard);
  if (tool > 0) guard(tool);
  // A guard that is killed alone takes the tool along.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
}

}  // namespace velka
