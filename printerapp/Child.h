// A program that runs beside us, with pipes to its standard descriptors. No shell, and no
// descriptor of ours but those.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Descriptor.h"

namespace velka::app {

struct ChildProgram {
  std::string program;                                           ///< with its folder
  std::vector<std::string> arguments;                            ///< the program's name first
  std::vector<std::pair<std::string, std::string>> environment;  ///< beside our own
  int input = -1;              ///< becomes its standard input; -1: a pipe
  std::string_view thirdText;  ///< what it reads from /dev/fd/3; none where empty
};

class Child {
 public:
  Child() = default;
  /// Ends the program where it still runs.
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Returns what is wrong, empty where it runs.
  [[nodiscard]] std::string start(const ChildProgram& program);

  [[nodiscard]] int in() const noexcept { return in_.get(); }
  [[nodiscard]] int out() const noexcept { return out_.get(); }
  [[nodiscard]] int err() const noexcept { return err_.get(); }
  void closeIn() noexcept { in_ = UniqueFd(); }
  void closeOut() noexcept { out_ = UniqueFd(); }
  void closeErr() noexcept { err_ = UniqueFd(); }

  void signal(int number) const noexcept;

  /// Waits for the end. How it ended where that was no success, as in "exited with
  /// status 3" or "was ended by signal 9"; else empty.
  [[nodiscard]] std::string wait() noexcept;

 private:
  pid_t pid_ = -1;
  UniqueFd in_;
  UniqueFd out_;
  UniqueFd err_;
};

}  // namespace velka::app
