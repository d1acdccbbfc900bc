// Starting another program: its words, its descriptors and its signals. No shell.
#pragma once

#include <spawn.h>
#include <sys/types.h>

#include <csignal>
#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace velka {

/// The arguments or the environment as a new program takes them.
class ProgramWords {
 public:
  ProgramWords() = default;
  explicit ProgramWords(std::span<const std::string> words) : words_(words.begin(), words.end()) {}

  void add(std::string word) { words_.push_back(std::move(word)); }

  /// The words with a null pointer behind them; until the next call of anything here.
  [[nodiscard]] char* const* get();

 private:
  std::vector<std::string> words_;
  std::vector<char*> pointers_;
};

/// Our own environment, in which these names have these values.
[[nodiscard]] ProgramWords environmentWith(
    std::span<const std::pair<std::string, std::string>> values);

/// What a new program finds. The first thing that cannot be asked for keeps it from being
/// started: without its own descriptors it would write to ours.
class ProgramStart {
 public:
  ProgramStart() noexcept;
  ~ProgramStart();
  ProgramStart(const ProgramStart&) = delete;
  ProgramStart& operator=(const ProgramStart&) = delete;

  /// Has it open a file as its descriptor `fd`, with the flags of open() and mode 0600.
  void open(int fd, const char* path, int flags) noexcept;
  /// Gives it our descriptor `from` as its `to`.
  void place(int from, int to) noexcept;
  /// Closes it all descriptors from `first` on.
  void closeFrom(int first) noexcept;
  /// Signals that it begins with held back; without the call those that we hold back.
  void holdBack(const sigset_t& signals) noexcept;
  void holdBackNone() noexcept;
  /// Signals that have their usual way with it even where we ignore them.
  void usualWayFor(std::initializer_list<int> signals) noexcept;
  /// A process group of its own, so that what it starts can be ended with it.
  void inOwnGroup() noexcept;

  /// Starts `program`, with its folder. Returns 0 and its number in `child`, or what is wrong
  /// as errno has it, `child` being as it was.
  [[nodiscard]] int run(pid_t& child, const char* program, char* const* arguments,
                        char* const* environment) const noexcept;
  /// The same of a program without a folder, looked for in PATH.
  [[nodiscard]] int runFromPath(pid_t& child, const char* program, char* const* arguments,
                                char* const* environment) const noexcept;

 private:
  using Spawn = decltype(posix_spawn);

  int runBy(Spawn* spawn, pid_t& child, const char* program, char* const* arguments,
            char* const* environment) const noexcept;
  void flag(int more) noexcept;

  int error_ = 0;
  short flags_ = 0;
  posix_spawn_file_actions_t files_ = {};
  posix_spawnattr_t attributes_ = {};
};

}  // namespace velka
