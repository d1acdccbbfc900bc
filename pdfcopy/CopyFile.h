// The PDF copy of a job under /tmp, where the printing filter expects it.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <initializer_list>

#include "Descriptor.h"
#include "FixedText.h"
#include "SignalsHeldBack.h"

namespace velka {

/// One job's copy while it is made. At most one lives at a time, because a signal
/// has to find it. Goes with all it made unless it was kept.
class CopyFile {
 public:
  /// Makes the file, mode 0600, without a name, so that it goes with the process; under a
  /// name that nobody knows where the file system has no such files.
  explicit CopyFile(const char* jobId) noexcept;
  ~CopyFile();
  CopyFile(const CopyFile&) = delete;
  CopyFile& operator=(const CopyFile&) = delete;

  /// Whether the file could be made; errno says why not.
  [[nodiscard]] explicit operator bool() const noexcept { return static_cast<bool>(file_); }
  [[nodiscard]] int descriptor() const noexcept { return file_.get(); }
  [[nodiscard]] const char* name() const noexcept { return name_.text(); }

  /// Gives the file its name, in one step and only where that is free or held by a copy
  /// that an earlier run of the job left. Returns whether it has it; errno says why not.
  [[nodiscard]] bool publish() noexcept;

  /// The copy is the printing filter's from here on, and nothing ends this process any more
  /// but its own end.
  void keep() noexcept;

 private:
  FixedText name_;
  UniqueFd file_;
};

/// The signals that end a job.
inline constexpr std::initializer_list<int> kEndings = {SIGTERM, SIGINT, SIGHUP};

/// Lets those signals end the process at once with status 1, the copy
/// removed and the process named by `endWithJob` told to end too. A closed pipe and a
/// file that may not grow are errors of the write, no signals.
void installCopySignals() noexcept;

/// The process that is told to end with this one; 0 for none.
void endWithJob(pid_t child) noexcept;

}  // namespace velka
