#include "Child.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <span>

#include "MemoryFile.h"

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

// The arguments or the environment as a new program takes them.
class Words {
 public:
  void add(std::string word) { words_.push_back(std::move(word)); }
  char* const* get() {
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
    return pointers_.data();
  }

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

Words environmentOf(const ChildProgram& program) {
  Words words;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view name = std::string_view(*entry).substr(0, std::strcspn(*entry, "="));
    if (std::ranges::none_of(program.environment, [&](const auto& e) { return e.first == name; }))
      words.add(*entry);
  }
  for (const auto& [name, value] : program.environment)
    words.add(std::string(name).append("=").append(value));
  return words;
}

class Settings {
 public:
  Settings() {
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    sigset_t usual;
    sigemptyset(&usual);
    for (const int signal : {SIGPIPE, SIGTERM, SIGINT, SIGHUP, SIGCHLD}) sigaddset(&usual, signal);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &usual);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~Settings() {
    posix_spawn_file_actions_destroy(&files);
    posix_spawnattr_destroy(&attributes);
  }
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

  void place(int from, int to) {
    if (error == 0) error = posix_spawn_file_actions_adddup2(&files, from, to);
  }
  // The library keeps descriptors of clients and devices, some of them without O_CLOEXEC.
  void closeOthers(int first) {
    if (error == 0) error = posix_spawn_file_actions_addclosefrom_np(&files, first);
  }

  int error = 0;
  posix_spawn_file_actions_t files{};
  posix_spawnattr_t attributes{};
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
  Settings settings;
  settings.place(program.input >= 0 ? program.input : in.read.get(), STDIN_FILENO);
  settings.place(out.write.get(), STDOUT_FILENO);
  settings.place(err.write.get(), STDERR_FILENO);
  if (third) settings.place(third.get(), kThird);
  settings.closeOthers(third ? kThird + 1 : kThird);
  Words arguments;
  for (const std::string& argument : program.arguments) arguments.add(argument);
  Words environment = environmentOf(program);
  int error = settings.error;
  if (error == 0)
    error = posix_spawn(&pid_, program.program.c_str(), &settings.files, &settings.attributes,
                        arguments.get(), environment.get());
  if (error != 0) {
    pid_ = -1;
    return program.program + ": " + std::strerror(error);
  }
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
