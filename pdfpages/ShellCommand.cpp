#include "ShellCommand.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "Descriptor.h"
#include "SignalsHeldBack.h"
#include "ToolGuard.h"

namespace velka {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kNoShell = 127;  // as the shell says of a command it does not find

// Never above what is there already.
template <typename Resource>
void limit(Resource resource, uint64_t most) noexcept {
  rlimit now = {};
  if (getrlimit(resource, &now) != 0) return;
  const auto narrower = static_cast<rlim_t>(std::min<uint64_t>(now.rlim_cur, most));
  const rlimit wanted = {narrower, narrower};
  setrlimit(resource, &wanted);
}

// The child between fork() and exec(): system calls only, because the process has a
// second thread, which may have held any lock.
[[noreturn]] void becomeShell(const char* command, const ToolLimits& limits, int null, int output,
                              pid_t filter) noexcept {
  // If we are killed outright, nobody else would end a tool that hangs.
  becomeGuardedTool(filter);
  // What it would keep of ours are the raster and the printer.
  if (dup2(null, STDIN_FILENO) < 0 || dup2(output < 0 ? null : output, STDOUT_FILENO) < 0 ||
      dup2(null, STDERR_FILENO) < 0)
    _exit(kNoDescriptors);
  limit(RLIMIT_FSIZE, limits.fileBytes);
  limit(RLIMIT_AS, limits.memoryBytes);
  // Its memory is somebody's document.
  limit(RLIMIT_CORE, 0);
  for (const int ours : {SIGPIPE, SIGXFSZ, SIGCHLD, SIGTERM}) std::signal(ours, SIG_DFL);
  sigset_t none = {};
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  // The shell is safe here: commands are fixed texts, numbers and names of letters,
  // digits, dots, underscores, hyphens and slashes, which no shell acts on.
  execl("/bin/sh", "sh", "-c", command, nullptr);
  _exit(kNoShell);
}

// Sleeps until the child ends, one of the signals of `open` comes, or the time is over.
void sleepUntil(Clock::time_point deadline, int child, const sigset_t& open) noexcept {
  using std::chrono::nanoseconds;
  constexpr auto kTick = std::chrono::milliseconds(20);
  constexpr auto kSecond = std::chrono::nanoseconds(std::chrono::seconds(1)).count();
  auto wait = std::max(nanoseconds(0), nanoseconds(deadline - Clock::now()));
  // Systems without such descriptors look at the child again and again.
  if (child < 0) wait = std::min<nanoseconds>(wait, kTick);
  const timespec timeout = {wait.count() / kSecond, wait.count() % kSecond};
  pollfd ended = {child, POLLIN, 0};
  ppoll(&ended, 1, &timeout, &open);
}

// Waits for the child, or has it end its whole group. Returns whether its time was over. The
// group is killed: the tools hold nothing that they would have to put in order.
bool isLate(pid_t child, const ToolWatch& watch, const sigset_t& open) noexcept {
  const UniqueFd ending(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
  const Clock::time_point deadline = Clock::now() + watch.limits.time;
  while (!hasEnded(child)) {
    const bool cancelled = watch.cancelled != 0;
    const bool late = Clock::now() >= deadline;
    if (cancelled || late) {
      kill(child, kEndTool);
      return !cancelled;
    }
    sleepUntil(deadline, ending.get(), open);
  }
  return false;
}

int statusOf(pid_t child) noexcept {
  int status = 0;
  while (waitpid(child, &status, 0) != child)
    if (errno != EINTR) return -1;
  return status;
}

}  // namespace

ToolEnd runShell(const char* command, const ToolWatch& watch, int output) noexcept {
  const UniqueFd null(open("/dev/null", O_RDWR | O_CLOEXEC));
  if (!null) return {};
  // Held back but for the sleep itself, so that SIGTERM never comes between the look at
  // the flag and the sleep.
  const SignalsHeldBack held({SIGTERM});
  if (watch.cancelled != 0) return {};
  const pid_t filter = getpid();
  const pid_t child = fork();
  if (child == 0) becomeShell(command, watch.limits, null.get(), output, filter);
  if (child < 0) return {};
  ToolEnd end;
  end.late = isLate(child, watch, held.before());
  end.status = statusOf(child);
  return end;
}

ToolEnd readShell(const char* command, const ToolWatch& watch, size_t most, std::string& text) {
  text.clear();
  // A file in memory, because a pipe would have to be emptied while the command runs.
  const UniqueFd file(memfd_create("output", MFD_CLOEXEC));
  if (!file) return {};
  const ToolEnd end = runShell(command, watch, file.get());
  text.resize(most);
  lseek(file.get(), 0, SEEK_SET);
  text.resize(readAll(file.get(), {reinterpret_cast<uint8_t*>(text.data()), most}));
  return end;
}

}  // namespace velka
