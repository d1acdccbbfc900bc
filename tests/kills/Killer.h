// A signal at a chosen instant of a job.
//
// The kernel is asked (seccomp's user notifications) to hold each system call of the job's
// processes until this one has seen it, so that an instant can be any of them: no poll and
// no pause hits the narrow ones.
#pragma once

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <thread>

#include "Descriptor.h"
#include "support/FilterRun.h"

namespace velka::testing {

/// When a job is hit.
struct Instant {
  static constexpr uint64_t kNever = UINT64_MAX;

  /// At its n-th system call, those of its tools included; 0 for by time.
  uint64_t call = kNever;
  std::chrono::microseconds time{0};  ///< from the start of the program
};

/// Sends a signal to the program of a job at an instant. Lives while the job and all its
/// processes do.
class Killer {
 public:
  Killer(FilterJob& job, int signal, Instant when);
  ~Killer();
  Killer(const Killer&) = delete;
  Killer& operator=(const Killer&) = delete;

  /// System calls so far, from the start of the program on.
  [[nodiscard]] uint64_t calls() const { return calls_; }

  /// Whether the kernel holds calls for us.
  static bool canHoldCalls();

 private:
  void run();
  void waitFor(std::chrono::microseconds time) const;
  void serve(const UniqueFd& listener);
  void take(const UniqueFd& listener);

  int signal_;
  Instant when_;
  UniqueFd ours_;
  UniqueFd childs_;
  UniqueFd program_;
  std::atomic<uint64_t> calls_ = 0;
  std::thread thread_;
};

}  // namespace velka::testing
