#include "Process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "ProgramStart.h"

namespace velka::view {
namespace {

ProgramWords argumentsOf(const Step& step) {
  ProgramWords words;
  words.add(step.program);
  for (const std::string& argument : step.arguments) words.add(argument);
  return words;
}

int start(const Step& step, const SignalsHeld& held, pid_t& child) {
  constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC;
  ProgramStart start;
  start.open(STDIN_FILENO, step.input.c_str(), O_RDONLY);
  start.open(STDOUT_FILENO, step.output.c_str(), kNew);
  start.open(STDERR_FILENO, step.errors.c_str(), kNew);
  start.holdBack(held.before());
  start.inOwnGroup();
  return start.run(child, step.program.c_str(), argumentsOf(step).get(),
                   environmentWith(step.environment).get());
}

// The end of a program's standard error, without what it says for debugging.
std::string lastWords(const std::string& errors) {
  std::ifstream file(errors);
  std::string line;
  std::string words;
  std::string chatter;
  while (std::getline(file, line)) {
    if (line.empty()) continue;
    const bool debug = line.starts_with("DEBUG") || line.starts_with("INFO");
    (debug ? chatter : words) = line;
  }
  const std::string& said = words.empty() ? chatter : words;
  return said.empty() ? "" : ": " + said;
}

// Looks for the end of the program, for a signal to us and for whether it is wanted, in
// turns.
int waitFor(pid_t child, const Step& step, bool& dropped) {
  constexpr timespec kPause{0, 5'000'000};
  int status = 0;
  bool told = false;
  while (true) {
    const pid_t ended = waitpid(child, &status, WNOHANG);
    if (ended == child || (ended < 0 && errno != EINTR)) return status;
    dropped = dropped || (step.unwanted && step.unwanted());
    // Its group may take a moment to be there.
    if (!told && (dropped || SignalsHeld::pending()))
      told = kill(-child, dropped ? step.ending : SIGTERM) == 0;
    (void)nanosleep(&kPause, nullptr);
  }
}

Problem judge(const Step& step, int status, bool dropped) {
  const std::string name = step.program.substr(step.program.rfind('/') + 1);
  if (dropped || SignalsHeld::pending()) return name + " was interrupted";
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) {
    // Filters may fail with status 0, so as not to stop a queue.
    std::error_code error;
    const bool silent = std::filesystem::file_size(step.output, error) == 0 && !error;
    if (!silent || step.mayBeSilent) return std::nullopt;
    return name + " wrote nothing" + lastWords(step.errors);
  }
  const std::string how = WIFEXITED(status)
                              ? " failed with status " + std::to_string(WEXITSTATUS(status))
                              : " was ended by signal " + std::to_string(WTERMSIG(status));
  return name + how + lastWords(step.errors);
}

}  // namespace

Problem runStep(const Step& step, const SignalsHeld& held) {
  pid_t child = 0;
  const int error = start(step, held, child);
  if (error != 0) return step.program + ": " + std::strerror(error);
  bool dropped = false;
  const int status = waitFor(child, step, dropped);
  return judge(step, status, dropped);
}

}  // namespace velka::view
