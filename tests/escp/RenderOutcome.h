// What becomes of a page that is rendered with little memory.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "escp/PageFixture.h"
#include "rastovelka.h"
#include "support/Capture.h"
#include "support/FailingMemory.h"
#include "support/FilterRun.h"

namespace velka::testing {

struct Outcome {
  Bytes output;
  bool printed = false;
  std::string said;  // about the page, in the log
  size_t asked = 0;
};

inline std::string saidOfThePage() {
  std::string said;
  for (const std::string& line : logMessages())
    if (line.starts_with("page ")) said += line;
  return said;
}

/// Renders the job's page with `passed` allocations that are served before one is not.
inline Outcome renderWith(Job& job, size_t passed) {
  EXPECT_EQ(truncate("/tmp/velka.log", 0), 0);
  Outcome outcome;
  {
    const Capture capture(STDOUT_FILENO);
    {
      const FailingMemory memory(passed);
      outcome.printed = RenderEscpData(&job.devobj);
      outcome.asked = memory.asked();
    }
    outcome.output = capture.bytes();
  }
  outcome.said = saidOfThePage();
  return outcome;
}

/// Every allocation of a page fails once. `whole` are the streams that may come out.
inline void expectWholeOrNothing(const std::function<Outcome(size_t passed)>& render,
                                 const std::vector<Bytes>& whole) {
  const Outcome full = render(FailingMemory::kNone);
  ASSERT_EQ(full.said, "");
  ASSERT_TRUE(full.printed);
  ASSERT_GT(full.asked, 20U);
  for (size_t passed = 0; passed < full.asked; ++passed) {
    SCOPED_TRACE(passed);
    const Outcome less = render(passed);
    if (less.output == full.output) continue;
    EXPECT_FALSE(less.printed);
    EXPECT_NE(less.said, "");
    EXPECT_NE(std::find(whole.begin(), whole.end(), less.output), whole.end())
        << less.output.size() << " bytes of " << full.output.size() << ": " << less.said;
  }
}

/// The commands that start a page's document.
inline Bytes startOf(const Bytes& stream) {
  constexpr int kStartBytes = 7;
  return {stream.begin(), stream.begin() + kStartBytes};
}

}  // namespace velka::testing
