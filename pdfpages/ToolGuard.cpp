#include "ToolGuard.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace velka {
namespace {

void killGroup(pid_t tool) noexcept {
  kill(-tool, SIGKILL);
}

// What the guard waits for, held back so that none is missed.
sigset_t heldBack() noexcept {
  sigset_t signals = {};
  sigemptyset(&signals);
  sigaddset(&signals, kEndTool);
  sigaddset(&signals, SIGCHLD);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

[[noreturn]] void endAs(int status) noexcept {
  if (!WIFSIGNALED(status)) _exit(WEXITSTATUS(status));
  // A second core would be one of the filter's memory.
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  std::signal(WTERMSIG(status), SIG_DFL);
  sigset_t its = {};
  sigemptyset(&its);
  sigaddset(&its, WTERMSIG(status));
  sigprocmask(SIG_UNBLOCK, &its, nullptr);
  kill(getpid(), WTERMSIG(status));
  _exit(kNoGuard);
}

// No handlers: between fork() and exec() not every system lets them run.
[[noreturn]] void guard(pid_t filter, pid_t tool, const sigset_t& awaited) noexcept {
  if (getppid() != filter) killGroup(tool);
  siginfo_t signal = {};
  while (!hasEnded(tool))
    if (sigwaitinfo(&awaited, &signal) == kEndTool) killGroup(tool);
  // What it leaves behind holds nothing that anybody waits for.
  killGroup(tool);
  int status = 0;
  while (waitpid(tool, &status, 0) != tool)
    if (errno != EINTR) _exit(kNoGuard);
  endAs(status);
}

}  // namespace

bool hasEnded(pid_t child) noexcept {
  siginfo_t info = {};
  if (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) != 0)
    return errno != EINTR;
  return info.si_pid == child;
}

void becomeGuardedTool(pid_t filter) noexcept {
  setpgid(0, 0);
  // Ignored children leave no status.
  std::signal(SIGCHLD, SIG_DFL);
  const sigset_t awaited = heldBack();
  prctl(PR_SET_PDEATHSIG, kEndTool);
  const pid_t tool = fork();
  if (tool < 0) _exit(kNoGuard);
  if (tool == 0) {
    setpgid(0, 0);
    // A guard that is killed alone takes the tool along.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    return;
  }
  // The tool does it too; whoever comes first, it has its group from here on.
  setpgid(tool, tool);
  guard(filter, tool, awaited);
}

}  // namespace velka
