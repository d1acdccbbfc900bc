// The instants at which others are hit.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "kills/Killer.h"

namespace velka::testing {
namespace {

// A program that asks for memory, say, is never told that a signal came instead.
TEST(Killer, InterruptsNoCallThatSignalsDoNotInterrupt) {
  if (!Killer::canHoldCalls()) GTEST_SKIP() << "no system calls can be held here";
  FilterJob good;
  const Killer counter(good, 0, {});
  ASSERT_EQ(runFilter(VELKA_STEADY_CALLS, good).status, 0);
  for (uint64_t behind = 0; behind < 20; ++behind) {
    SCOPED_TRACE("call " + std::to_string(behind) + " before the last");
    FilterJob job;
    const Killer killer(job, SIGTERM, {counter.calls() - behind, {}});
    EXPECT_EQ(runFilter(VELKA_STEADY_CALLS, job).status, 0);
  }
}

// As the killer's own does.
TEST(StartOfAProgram, ComesThroughWhileAnotherThreadTakesMemory) {
  std::atomic<bool> done = false;
  std::thread other([&done] {
    while (!done) const std::vector<std::string> words(1000, std::string(30, ' '));
  });
  FilterJob job;
  job.mostSeconds = 60;
  for (int number = 0; number < 300; ++number)
    job.environment.emplace_back("VELKA_TEST_" + std::to_string(number), "1234567890123456");
  for (int run = 0; run < 40 && !HasFailure(); ++run)
    EXPECT_EQ(runFilter("/bin/true", job).status, 0);
  done = true;
  other.join();
}

}  // namespace
}  // namespace velka::testing
