#include <gtest/gtest.h>

#include "Turns.h"

namespace velka::serve {
namespace {

TEST(Turns, ANewerWishOfATabOutdatesItsOlderOnes) {
  Turns turns;
  turns.note("a", 3);
  EXPECT_FALSE(turns.isOutdated("a", 3));
  turns.note("a", 4);
  EXPECT_TRUE(turns.isOutdated("a", 3));
  EXPECT_FALSE(turns.isOutdated("a", 4));
  EXPECT_FALSE(turns.isOutdated("b", 1));
}

TEST(Turns, AWishThatComesLateIsOutdated) {
  Turns turns;
  turns.note("a", 4);
  turns.note("a", 3);
  EXPECT_TRUE(turns.isOutdated("a", 3));
  EXPECT_FALSE(turns.isOutdated("a", 4));
}

TEST(Turns, NothingIsWantedAtTheEnd) {
  Turns turns;
  turns.note("a", 1);
  turns.end();
  EXPECT_TRUE(turns.isOutdated("a", 1));
  EXPECT_TRUE(turns.isOutdated("", 0));
}

TEST(Turns, TabsWithoutEndTakeNoMemoryWithoutEnd) {
  Turns turns;
  for (int i = 0; i < 10000; ++i) turns.note("tab" + std::to_string(i), 1);
  turns.note("zz", 2);
  EXPECT_TRUE(turns.isOutdated("zz", 1));
}

}  // namespace
}  // namespace velka::serve
