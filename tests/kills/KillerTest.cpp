// The instants at which others are hit.
#include <gtest/gtest.h>

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

}  // namespace
}  // namespace velka::testing
