#include "ProgramStart.h"

#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace velka {

char* const* ProgramWords::get() {
  pointers_.clear();
  for (std::string& word : words_) pointers_.push_back(word.data());
  pointers_.push_back(nullptr);
  return pointers_.data();
}

ProgramWords environmentWith(std::span<const std::pair<std::string, std::string>> values) {
  const auto replaced = [values](std::string_view entry) {
    const std::string_view name = entry.substr(0, entry.find('='));
    return std::ranges::any_of(values, [name](const auto& value) { return value.first == name; });
  };
  ProgramWords words;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry)
    if (!replaced(*entry)) words.add(*entry);
  for (const auto& [name, value] : values) words.add(std::string(name).append("=").append(value));
  return words;
}

ProgramStart::ProgramStart() noexcept {
  posix_spawn_file_actions_init(&files_);
  posix_spawnattr_init(&attributes_);
}

ProgramStart::~ProgramStart() {
  posix_spawn_file_actions_destroy(&files_);
  posix_spawnattr_destroy(&attributes_);
}

void ProgramStart::open(int fd, const char* path, int flags) noexcept {
  constexpr mode_t kOwnerOnly = 0600;
  if (error_ == 0) error_ = posix_spawn_file_actions_addopen(&files_, fd, path, flags, kOwnerOnly);
}

void ProgramStart::place(int from, int to) noexcept {
  if (error_ == 0) error_ = posix_spawn_file_actions_adddup2(&files_, from, to);
}

void ProgramStart::closeFrom(int first) noexcept {
  if (error_ == 0) error_ = posix_spawn_file_actions_addclosefrom_np(&files_, first);
}

void ProgramStart::holdBack(const sigset_t& signals) noexcept {
  posix_spawnattr_setsigmask(&attributes_, &signals);
  flag(POSIX_SPAWN_SETSIGMASK);
}

void ProgramStart::holdBackNone() noexcept {
  sigset_t none = {};
  sigemptyset(&none);
  holdBack(none);
}

void ProgramStart::usualWayFor(std::initializer_list<int> signals) noexcept {
  sigset_t usual = {};
  sigemptyset(&usual);
  for (const int signal : signals) sigaddset(&usual, signal);
  posix_spawnattr_setsigdefault(&attributes_, &usual);
  flag(POSIX_SPAWN_SETSIGDEF);
}

void ProgramStart::inOwnGroup() noexcept {
  posix_spawnattr_setpgroup(&attributes_, 0);
  flag(POSIX_SPAWN_SETPGROUP);
}

void ProgramStart::flag(int more) noexcept {
  flags_ = static_cast<short>(flags_ | more);
  posix_spawnattr_setflags(&attributes_, flags_);
}

int ProgramStart::runBy(Spawn* spawn, pid_t& child, const char* program, char* const* arguments,
                        char* const* environment) const noexcept {
  if (error_ != 0) return error_;
  pid_t started = 0;
  const int error = spawn(&started, program, &files_, &attributes_, arguments, environment);
  if (error == 0) child = started;
  return error;
}

int ProgramStart::run(pid_t& child, const char* program, char* const* arguments,
                      char* const* environment) const noexcept {
  return runBy(posix_spawn, child, program, arguments, environment);
}

int ProgramStart::runFromPath(pid_t& child, const char* program, char* const* arguments,
                              char* const* environment) const noexcept {
  return runBy(posix_spawnp, child, program, arguments, environment);
}

}  // namespace velka
