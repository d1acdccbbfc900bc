// Builders that find no memory for their bytes.
#include <gtest/gtest.h>

#include <functional>

#include "escp/PageFixture.h"
#include "support/FailingMemory.h"

namespace velka::testing {
namespace {

struct Arguments {
  unsigned char* buffer = nullptr;
  unsigned int capacity = 5;
  unsigned int length = 6;
};

// A builder that is given no buffer, and no memory for one, fails and changes nothing.
void expectFailure(const char* name, const std::function<bool(Arguments&)>& build) {
  SCOPED_TRACE(name);
  Arguments a;
  bool built = true;
  size_t asked = 0;
  {
    const FailingMemory none(0, FailingMemory::kAll);
    built = build(a);
    asked = none.asked();
  }
  EXPECT_FALSE(built);
  EXPECT_GT(asked, 0U);
  EXPECT_EQ(a.buffer, nullptr);
  EXPECT_EQ(a.capacity, 5U);
  EXPECT_EQ(a.length, 6U);
}

TEST(BuildersWithoutMemory, FailAndChangeNothing) {
  Job job(8, 8, 180, 180);
  job.options.sEjectMode = 1;
  CESCPSML& g = *job.pdev.pEscpSml;
  expectFailure(
      "unit", [&](Arguments& a) { return g.GetSetUnitCmd(10, &a.buffer, &a.capacity, &a.length); });
  expectFailure("horizontal", [&](Arguments& a) {
    return g.GetXMoveCmd(1, 3.0F, 9, &a.buffer, &a.capacity, &a.length);
  });
  expectFailure("paper", [&](Arguments& a) {
    return g.GetRelativeYMoveCmd(180, 9, &a.buffer, &a.capacity, &a.length);
  });
  expectFailure("older paper", [&](Arguments& a) {
    return g.GetAdvancesYMoveCmd(180, 9, &a.buffer, &a.capacity, &a.length);
  });
  expectFailure("end of page",
                [&](Arguments& a) { return g.GetEndPageCmd(&a.buffer, &a.capacity, &a.length); });
  expectFailure("eject mode", [&](Arguments& a) {
    return g.GetEjectModeCmd(&job.devobj, &a.buffer, &a.capacity, &a.length);
  });
  expectFailure("growth", [&](Arguments& a) {
    unsigned int size = 0;
    return g.GrowBMPMem(&a.buffer, &size, 3, 0);
  });
}

}  // namespace
}  // namespace velka::testing
