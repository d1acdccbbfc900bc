// Runs the filter the way the print scheduler does: a process, arguments, an
// environment, standard descriptors.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/Capture.h"

namespace velka::testing {

struct FilterJob {
  /// After the program's name.
  std::vector<std::string> arguments = {"7", "user", "title", "1", ""};
  /// Value of PPD; unset where there is none.
  std::optional<std::string> ppd;
  /// Value of PATH; the test's own where there is none.
  std::optional<std::string> path;
  /// More of the environment: names and values.
  std::vector<std::pair<std::string, std::string>> environment;
  Bytes input;  ///< standard input
  /// Descriptors closed when the program starts.
  std::vector<int> closedAtStart;
  /// Called with the process id once the program runs; input is fed by it through
  /// the descriptor instead of from `input`.
  std::function<void(int pid, int inputFd)> feed;
  /// Called with the process id once the program runs; standard output is a small pipe
  /// then, which this reads to its end through the descriptor. It returns the output.
  std::function<Bytes(int pid, int outputFd)> drain;
  /// Most bytes of address space the program may take; 0 for no limit.
  size_t addressSpace = 0;
  /// Most bytes that a file may have which the program writes; 0 for no limit.
  size_t fileSize = 0;
  /// Seconds after which SIGALRM ends the program; 0 for none.
  unsigned mostSeconds = 0;
  /// Standard output is a pipe that nobody reads.
  bool outputBroken = false;
  /// Called in the process that becomes the program, with its descriptors and limits.
  std::function<void()> beforeStart;
};

struct FilterResult {
  int status = -1;  ///< exit status; 128 + signal where one ended the program
  Bytes output;
  std::string errors;  ///< standard error
  long peakKiB = 0;    ///< most memory that it had at a time
};

/// Runs `program` to its end.
FilterResult runFilter(const std::string& program, const FilterJob& job);

/// All that comes out of a descriptor until its end.
Bytes readToEnd(int fd);

/// The lines of the job log without their headers, file suffixes and line ends.
std::vector<std::string> logMessages();

/// The job log as it is.
std::string logText();

}  // namespace velka::testing
