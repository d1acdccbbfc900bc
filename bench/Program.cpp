#include "Program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace velka::bench {
namespace {

double nowMs() noexcept {
  timespec time = {};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double milliseconds(const timeval& time) noexcept {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

[[noreturn]] void become(const FilterRun& run, int output) {
  const int null = open("/dev/null", O_RDWR);
  dup2(null, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(null, STDERR_FILENO);
  setenv("PPD", run.ppd.c_str(), 1);
  std::vector<std::string> arguments = {run.program, "1",         "bench",   "bench",
                                        "1",         run.options, run.raster};
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  execv(run.program.c_str(), argv.data());
  _exit(127);
}

// Reads to the end; the time of the first byte, the bytes in all.
void drain(int fd, double start, Cost& cost) {
  static std::array<char, 1U << 20U> buffer;
  double bytes = 0;
  for (;;) {
    const ssize_t n = read(fd, buffer.data(), buffer.size());
    if (n <= 0) break;
    if (bytes == 0) cost.firstByteMs = nowMs() - start;
    bytes += static_cast<double>(n);
  }
  cost.outputMb = bytes / 1e6;
}

Cost middleOf(std::vector<Cost> costs) {
  double firstByte = costs.front().firstByteMs;
  double wall = costs.front().wallMs;
  for (const Cost& cost : costs) {
    firstByte = std::min(firstByte, cost.firstByteMs);
    wall = std::min(wall, cost.wallMs);
  }
  const auto middle = costs.begin() + static_cast<std::ptrdiff_t>(costs.size() / 2);
  std::nth_element(costs.begin(), middle, costs.end(),
                   [](const Cost& a, const Cost& b) { return a.cpuMs < b.cpuMs; });
  Cost cost = *middle;
  cost.firstByteMs = firstByte;
  cost.wallMs = wall;
  return cost;
}

}  // namespace

Cost runOnce(const FilterRun& run) {
  std::array<int, 2> pipe = {-1, -1};
  Cost cost;
  if (pipe2(pipe.data(), O_CLOEXEC) != 0) return cost;
  // A page of commands goes out without waiting for this process to be scheduled.
  fcntl(pipe[1], F_SETPIPE_SZ, 1 << 20);
  const double start = nowMs();
  const pid_t child = fork();
  if (child == 0) become(run, pipe[1]);
  close(pipe[1]);
  drain(pipe[0], start, cost);
  close(pipe[0]);
  rusage usage = {};
  int status = 0;
  wait4(child, &status, 0, &usage);
  cost.wallMs = nowMs() - start;
  cost.systemMs = milliseconds(usage.ru_stime);
  cost.cpuMs = milliseconds(usage.ru_utime) + cost.systemMs;
  cost.peakMb = static_cast<double>(usage.ru_maxrss) * 1024 / 1e6;
  cost.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return cost;
}

Pair medianPair(const FilterRun& filter, const FilterRun& reader, int runs) {
  std::vector<Cost> filters;
  std::vector<Cost> readers;
  for (int i = 0; i < runs; ++i) {
    filters.push_back(runOnce(filter));
    readers.push_back(runOnce(reader));
  }
  return {middleOf(std::move(filters)), middleOf(std::move(readers))};
}

}  // namespace velka::bench
