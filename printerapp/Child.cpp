#include "Child.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "MemoryFile.h"
#include "ProgramStart.h"

namespace velka::app {
namespace {

constexpr int kThird = 3;

// Above those that the program gets, so that none is lost on its way to its place.
UniqueFd high(UniqueFd low) {
  return UniqueFd(low ? fcntl(low.get(), F_DUPFD_CLOEXEC, kThird + 1) : -1);
}

struct Pipe {
  UniqueFd read;
  UniqueFd write;

  bool open() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return false;
    read = high(UniqueFd(ends[0]));
    write = high(UniqueFd(ends[1]));
    return read && write;
  }
};

}  // namespace

Child::~Child() {
  if (pid_ < 0) return;
  signal(SIGKILL);
  (void)wait();
}

std::string Child::start(const ChildProgram& program) {
  Pipe in;
  Pipe out;
  Pipe err;
  const UniqueFd third = program.thirdText.empty() ? UniqueFd() : high(fileOf(program.thirdText));
  const bool pipes = (program.input >= 0 || in.open()) && out.open() && err.open();
  if (!pipes || (!program.thirdText.empty() && !third))
    return program.program + ": " + std::strerror(errno);
  ProgramStart start;
  start.place(program.input >= 0 ? program.input : in.read.get(), STDIN_FILENO);
  start.place(out.write.get(), STDOUT_FILENO);
  start.place(err.write.get(), STDERR_FILENO);
  if (third) start.place(third.get(), kThird);
  // The library keeps descriptors of clients and devices, some of them without O_CLOEXEC.
  start.closeFrom(third ? kThird + 1 : kThird);
  start.holdBackNone();
  start.usualWayFor({SIGPIPE, SIGTERM, SIGINT, SIGHUP, SIGCHLD});
  const int error = start.run(pid_, program.program.c_str(), ProgramWords(program.arguments).get(),
                              environmentWith(program.environment).get());
  if (error != 0) return program.program + ": " + std::strerror(error);
  in_ = std::move(in.write);
  out_ = std::move(out.read);
  err_ = std::move(err.read);
  return {};
}

void Child::signal(int number) const noexcept {
  if (pid_ > 0) (void)kill(pid_, number);
}

std::string Child::wait() noexcept {
  if (pid_ < 0) return "does not run";
  int status = 0;
  pid_t ended = -1;
  do {
    ended = waitpid(pid_, &status, 0);
  } while (ended < 0 && errno == EINTR);
  const bool known = ended == pid_;
  pid_ = -1;
  if (!known) return "ended, nobody knows how";
  if (WIFSIGNALED(status)) return "was ended by signal " + std::to_string(WTERMSIG(status));
  const int code = WEXITSTATUS(status);
  return code == 0 ? "" : "exited with status " + std::to_string(code);
}

}  // namespace velka::app
