#include "faults/SystemCalls.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <climits>
#include <csignal>
#include <map>

namespace velka::testing {
namespace {

std::string bytesAt(pid_t process, uint64_t address, size_t size) {
  std::string bytes(size, '\0');
  const iovec here = {bytes.data(), size};
  const iovec there = {std::bit_cast<void*>(address), size};
  const ssize_t count = process_vm_readv(process, &here, 1, &there, 1, 0);
  bytes.resize(count < 0 ? 0 : static_cast<size_t>(count));
  return bytes;
}

// Up to the page's end first, as there may be none behind it.
std::string pathAt(pid_t process, uint64_t address) {
  const size_t toPageEnd = 4096 - address % 4096;
  std::string path = bytesAt(process, address, toPageEnd);
  if (path.find('\0') == std::string::npos) path += bytesAt(process, address + toPageEnd, PATH_MAX);
  return path.substr(0, path.find('\0'));
}

std::string textOf(pid_t process, const SystemCall& call) {
  switch (call.number) {
    case SYS_write:
      return bytesAt(process, call.arguments[1], call.arguments[2]);
    case SYS_openat:
    case SYS_mkdirat:
    case SYS_unlinkat:
    case SYS_renameat:
    case SYS_renameat2:
      return pathAt(process, call.arguments[1]);
#ifdef SYS_mkdir
    case SYS_open:
    case SYS_mkdir:
    case SYS_unlink:
    case SYS_rename:
      return pathAt(process, call.arguments[0]);
#endif
    default:
      return {};
  }
}

class Tracer {
 public:
  // Until the last of them has ended.
  std::vector<SystemCall> watch() {
    int status = 0;
    for (pid_t task = 0; (task = waitpid(-1, &status, __WALL)) > 0;)
      if (WIFSTOPPED(status)) ptrace(PTRACE_SYSCALL, task, 0, signalFor(task, status));
    return std::move(calls_);
  }

 private:
  // The signal that the task shall get: none for the stops that are our own.
  long signalFor(pid_t task, int status) {
    constexpr int kCall = SIGTRAP | 0x80;
    const int signal = WSTOPSIG(status);
    if (signal == kCall) note(task);
    const bool event = status >> 16 != 0 || signal == kCall || signal == SIGTRAP;
    return event || signal == SIGSTOP ? 0 : signal;
  }

  void note(pid_t task) {
    __ptrace_syscall_info info = {};
    if (ptrace(PTRACE_GET_SYSCALL_INFO, task, sizeof info, &info) <= 0) return;
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
      SystemCall call;
      call.number = static_cast<long>(info.entry.nr);
      for (size_t i = 0; i < call.arguments.size(); ++i) call.arguments[i] = info.entry.args[i];
      call.text = textOf(task, call);
      begun_[task] = calls_.size();
      calls_.push_back(call);
    } else if (info.op == PTRACE_SYSCALL_INFO_EXIT && begun_.count(task) > 0) {
      calls_[begun_[task]].result = info.exit.rval;
    }
  }

  std::map<pid_t, size_t> begun_;
  std::vector<SystemCall> calls_;
};

// "" for what takes no descriptor, or does nothing to its file.
std::string wordFor(const SystemCall& call) {
  switch (call.number) {
    case SYS_write:
      return "write";
    case SYS_ftruncate:
      return "empty";
    case SYS_fsync:
      return "sync";
    case SYS_fadvise64:
      return call.arguments[3] == POSIX_FADV_DONTNEED ? "leave the cache" : "advise";
    case SYS_close:
      return "close";
    case SYS_lseek:
    case SYS_fstat:
    case SYS_newfstatat:
      return "look";
    case SYS_writev:
    case SYS_pwrite64:
    case SYS_fdatasync:
    case SYS_sync_file_range:
    case SYS_dup:
      return "other";
    default:
      return {};
  }
}

std::string wordForOpening(const SystemCall& call) {
  const uint64_t flags = call.arguments[2];
  if ((flags & O_TRUNC) != 0) return "open emptied";
  return (flags & O_APPEND) != 0 ? "open to append" : "open";
}

std::string wordForName(const SystemCall& call) {
  switch (call.number) {
    case SYS_unlinkat:
#ifdef SYS_unlink
    case SYS_unlink:
#endif
      return "remove";
    case SYS_openat:
      return wordForOpening(call);
    default:
      return "rename";
  }
}

bool makesFolder(const SystemCall& call) {
#ifdef SYS_mkdir
  if (call.number == SYS_mkdir) return true;
#endif
  return call.number == SYS_mkdirat;
}

// Calls `tell` for each call that is about the file, with its word.
template <typename Tell>
void forEachOf(const std::string& path, const std::vector<SystemCall>& calls, Tell tell) {
  constexpr uint64_t kNone = ~uint64_t{0};
  uint64_t file = kNone;
  for (const SystemCall& call : calls) {
    if (makesFolder(call) && path.rfind(call.text + "/", 0) == 0) {
      tell("make " + call.text, call);
    } else if (call.number != SYS_write && call.text == path) {
      if (call.number == SYS_newfstatat) continue;
      tell(wordForName(call), call);
      if (call.number == SYS_openat && call.result >= 0) file = static_cast<uint64_t>(call.result);
    } else if (file != kNone && call.arguments[0] == file) {
      const std::string word = wordFor(call);
      if (!word.empty()) tell(word, call);
      if (call.number == SYS_close) file = kNone;
    }
  }
}

}  // namespace

std::vector<SystemCall> systemCallsOf(const std::function<void()>& child) {
  const pid_t process = fork();
  if (process == 0) {
    if (ptrace(PTRACE_TRACEME, 0, 0, 0) != 0) _exit(1);
    raise(SIGSTOP);
    child();
    _exit(0);
  }
  int status = 0;
  if (waitpid(process, &status, 0) != process || !WIFSTOPPED(status)) return {};
  ptrace(PTRACE_SETOPTIONS, process, 0,
         PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_TRACEEXEC |
             PTRACE_O_EXITKILL);
  ptrace(PTRACE_SYSCALL, process, 0, 0);
  return Tracer().watch();
}

std::vector<std::string> whatBecomesOf(const std::string& path,
                                       const std::vector<SystemCall>& calls) {
  std::vector<std::string> words;
  forEachOf(path, calls, [&](const std::string& word, const SystemCall& /*call*/) {
    if (word != "look" || words.empty() || words.back() != word) words.push_back(word);
  });
  return words;
}

std::vector<std::string> writesTo(const std::string& path, const std::vector<SystemCall>& calls) {
  std::vector<std::string> writes;
  forEachOf(path, calls, [&](const std::string& word, const SystemCall& call) {
    if (word == "write") writes.push_back(call.text);
  });
  return writes;
}

}  // namespace velka::testing
