#include "SystemConverter.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "CopyFile.h"
#include "DocumentKind.h"
#include "FilterMessages.h"
#include "ProgramStart.h"

namespace velka {
namespace {

std::string pathOf(const std::string& name) {
  const char* folder = std::getenv("CUPS_SERVERBIN");  // NOLINT(concurrency-mt-unsafe): one thread
  return folder == nullptr ? std::string() : std::string(folder) + "/filter/" + name;
}

// Its process id, or 0 with errno set. The document is its standard input, the PDF its
// standard output; signals are as the scheduler hands them to a filter: none held back,
// none ignored. Those that we handle get their usual way by themselves.
pid_t start(const std::string& program, char* const argv[], int document, int pdf) {
  constexpr size_t kArgumentsWithoutFile = 6;
  std::array<char*, kArgumentsWithoutFile + 1> arguments = {};
  for (size_t i = 0; i < kArgumentsWithoutFile; ++i) arguments[i] = argv[i];
  ProgramStart start;
  start.place(document, STDIN_FILENO);
  start.place(pdf, STDOUT_FILENO);
  start.holdBackNone();
  start.usualWayFor({SIGPIPE, SIGXFSZ});
  pid_t child = 0;
  errno = start.run(child, program.c_str(), arguments.data(), environ);
  return child;
}

// Its exit status, or 128 and the signal that ended it.
int waitFor(pid_t child) noexcept {
  constexpr int kBySignal = 128;
  constexpr int kUnknown = -1;
  siginfo_t ended = {};
  while (waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT) != 0)
    if (errno != EINTR) return kUnknown;
  // Its number may be another process's as soon as it is reaped.
  endWithJob(0);
  int status = 0;
  if (waitpid(child, &status, 0) != child) return kUnknown;
  return WIFSIGNALED(status) ? kBySignal + WTERMSIG(status) : WEXITSTATUS(status);
}

bool holdsPdf(int file) {
  std::string head(kHeadSize, '\0');
  const ssize_t size = pread(file, head.data(), head.size(), 0);
  head.resize(size > 0 ? static_cast<size_t>(size) : 0);
  return documentKind(head) == DocumentKind::Pdf;
}

}  // namespace

bool makePdf(const std::string& name, char* const argv[], int document, int pdf) {
  const std::string program = pathOf(name);
  if (program.empty()) {
    tellScheduler(MessageLevel::Error, "CUPS_SERVERBIN is not set, so " + name + " cannot be run");
    return false;
  }
  pid_t child = 0;
  {
    // So that a signal never misses a child that has just been started.
    const SignalsHeldBack held(kEndings);
    child = start(program, argv, document, pdf);
    endWithJob(child);
  }
  if (child == 0) {
    tellSystemError("Cannot run " + program);
    return false;
  }
  const int status = waitFor(child);
  endWithJob(0);
  if (status == 0 && holdsPdf(pdf)) return true;
  tellScheduler(MessageLevel::Error,
                program + " made no PDF of the document, its status is " + std::to_string(status));
  return false;
}

}  // namespace velka
