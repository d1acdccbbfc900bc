#include "SystemConverter.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "CopyFile.h"
#include "DocumentKind.h"
#include "FilterMessages.h"

namespace velka {
namespace {

std::string pathOf(const std::string& name) {
  const char* folder = std::getenv("CUPS_SERVERBIN");  // NOLINT(concurrency-mt-unsafe): one thread
  return folder == nullptr ? std::string() : std::string(folder) + "/filter/" + name;
}

// The document is its standard input, the PDF its standard output; signals are as
// the scheduler hands them to a filter: none held back, none ignored. Those that we
// handle get their usual way by themselves.
struct SpawnSettings {
  SpawnSettings(int document, int pdf) noexcept {
    posix_spawn_file_actions_init(&files);
    // Without them the PDF would go on to the next filter.
    error = posix_spawn_file_actions_adddup2(&files, document, STDIN_FILENO);
    if (error == 0) error = posix_spawn_file_actions_adddup2(&files, pdf, STDOUT_FILENO);
    posix_spawnattr_init(&attributes);
    sigset_t signals = {};
    sigemptyset(&signals);
    // The C library begins with this mask; the standard leaves it open.
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  int error = 0;  ///< why the child would not have its descriptors
  posix_spawn_file_actions_t files = {};
  posix_spawnattr_t attributes = {};
};

// Its process id, or 0 with errno set.
pid_t start(const std::string& program, char* const argv[], int document, int pdf) {
  constexpr size_t kArgumentsWithoutFile = 6;
  std::array<char*, kArgumentsWithoutFile + 1> arguments = {};
  for (size_t i = 0; i < kArgumentsWithoutFile; ++i) arguments[i] = argv[i];
  const SpawnSettings settings(document, pdf);
  errno = settings.error;
  if (errno != 0) return 0;
  pid_t child = 0;
  errno = posix_spawn(&child, program.c_str(), &settings.files, &settings.attributes,
                      arguments.data(), environ);
  return errno == 0 ? child : 0;
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
