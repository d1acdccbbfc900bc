#include "ToolGuard.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace velka {
namespace {

volatile pid_t tool = 0;  // in the guard, which holds the number until it has the status

extern "C" void killTool(int /*signal*/) {
  kill(-tool, SIGKILL);
}

void unblock(int signal) noexcept {
  sigset_t one = {};
  sigemptyset(&one);
  sigaddset(&one, signal);
  sigprocmask(SIG_UNBLOCK, &one, nullptr);
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

[[noreturn]] void guard(pid_t filter) noexcept {
  unblock(kEndTool);
  if (getppid() != filter) killTool(kEndTool);
  siginfo_t ended = {};
  while (waitid(P_PID, static_cast<id_t>(tool), &ended, WEXITED | WNOWAIT) != 0)
    if (errno != EINTR) break;
  // What it leaves behind holds nothing that anybody waits for.
  killTool(kEndTool);
  std::signal(kEndTool, SIG_IGN);
  int status = 0;
  while (waitpid(tool, &status, 0) != tool)
    if (errno != EINTR) _exit(kNoGuard);
  endAs(status);
}

}  // namespace

void becomeGuardedTool(pid_t filter) noexcept {
  setpgid(0, 0);
  std::signal(kEndTool, killTool);
  prctl(PR_SET_PDEATHSIG, kEndTool);
  tool = fork();
  if (tool < 0) _exit(kNoGuard);
  if (tool == 0) {
    setpgid(0, 0);
    // A guard that is killed alone takes the tool along.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    return;
  }
  // The tool does it too; whoever comes first, it has its group from here on.
  setpgid(tool, tool);
  guard(filter);
}

}  // namespace velka
