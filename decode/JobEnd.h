// Whether a stream ends where a job does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "CommandReader.h"

namespace velka::decode {

/// Follows a stream's commands. A job's last command initialises the printer behind a
/// form feed, or behind the start of a page that prints nothing. The same command
/// starts a page, so a stream cut right behind it looks whole.
class JobEnd {
 public:
  void note(CommandKind kind);

  /// What is missing at the end of a stream of `size` bytes that had no other fault.
  [[nodiscard]] std::optional<Fault> missing(size_t size) const;

 private:
  enum class State : uint8_t {
    Nothing,  // no command so far
    Started,  // a page was begun
    Blank,    // and its length told: it may end here
    Inside,   // on a page that needs a form feed
    Fed,      // behind one
    Ended,    // behind a job
  };

  State state_ = State::Nothing;
};

}  // namespace velka::decode
