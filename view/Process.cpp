#include "Process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace velka::view {
namespace {

// The arguments and the environment as a new program takes them.
class Words {
 public:
  void add(std::string word) { words_.push_back(std::move(word)); }

  char* const* get() {
    pointers_.clear();
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
    return pointers_.data();
  }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

Words argumentsOf(const Step& step) {
  Words words;
  words.add(step.program);
  for (const std::string& argument : step.arguments) words.add(argument);
  return words;
}

Words environmentOf(const Step& step) {
  const auto replaced = [&](std::string_view entry) {
    return std::ranges::any_of(step.environment, [&](const auto& pair) {
      return entry.substr(0, entry.find('=')) == pair.first;
    });
  };
  Words words;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    if (!replaced(*entry)) words.add(*entry);
  }
  for (const auto& [name, value] : step.environment)
    words.add(std::string(name).append("=").append(value));
  return words;
}

class SpawnSettings {
 public:
  SpawnSettings(const Step& step, const SignalsHeld& held) {
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC;
    const auto open = [this](int fd, const std::string& name, int flags) {
      if (error == 0)
        error = posix_spawn_file_actions_addopen(&files, fd, name.c_str(), flags, 0600);
    };
    open(STDIN_FILENO, step.input, O_RDONLY);
    open(STDOUT_FILENO, step.output, kNew);
    open(STDERR_FILENO, step.errors, kNew);
    posix_spawnattr_setsigmask(&attributes, &held.before());
    // A group of its own, so that what the program starts can be ended with it.
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  int error = 0;  ///< why the program would write to our own descriptors
  posix_spawn_file_actions_t files{};
  posix_spawnattr_t attributes{};
};

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
    if (!told && (dropped || SignalsHeld::pending())) {
      (void)kill(-child, dropped ? step.ending : SIGTERM);
      told = true;
    }
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
  Words arguments = argumentsOf(step);
  Words environment = environmentOf(step);
  const SpawnSettings settings(step, held);
  pid_t child = 0;
  int error = settings.error;
  if (error == 0)
    error = posix_spawn(&child, step.program.c_str(), &settings.files, &settings.attributes,
                        arguments.get(), environment.get());
  if (error != 0) return step.program + ": " + std::strerror(error);
  bool dropped = false;
  const int status = waitFor(child, step, dropped);
  return judge(step, status, dropped);
}

}  // namespace velka::view
