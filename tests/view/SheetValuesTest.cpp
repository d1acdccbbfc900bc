#include <gtest/gtest.h>

#include "NearestName.h"
#include "SheetValues.h"

namespace velka::view {
namespace {

using Words = std::vector<std::string>;

Words valuesOf(const std::string& text) {
  const auto option = readSheetOption(text);
  return option ? option->values : Words{"none"};
}

TEST(SheetValues, AreNamedOneByOneOrAsARangeInSteps) {
  EXPECT_EQ(valuesOf("A=60..120/20"), (Words{"60", "80", "100", "120"}));
  EXPECT_EQ(valuesOf("A=60..119/20"), (Words{"60", "80", "100"}));
  EXPECT_EQ(valuesOf("A=10..-10/5"), (Words{"10", "5", "0", "-5", "-10"}));
  EXPECT_EQ(valuesOf("A=5..5/1"), (Words{"5"}));
  EXPECT_EQ(valuesOf("A=no,1..3/1,200"), (Words{"no", "1", "2", "3", "200"}));
  EXPECT_EQ(readSheetOption("Red=1")->name, "Red");
}

TEST(SheetValues, KeepTheDecimalsOfTheMostExactNumber) {
  EXPECT_EQ(valuesOf("A=0.1..0.3/0.1"), (Words{"0.1", "0.2", "0.3"}));
  EXPECT_EQ(valuesOf("A=1..2/0.25"), (Words{"1.00", "1.25", "1.50", "1.75", "2.00"}));
  EXPECT_EQ(valuesOf("A=-0.5..0.5/0.5"), (Words{"-0.5", "0.0", "0.5"}));
}

TEST(SheetValues, OfNoSuchFormAreRefused) {
  for (const char* text : {"A", "=1", "A=", "A=1,", "A=1..2", "A=1../1", "A=..2/1", "A=1..2/0",
                           "A=1..2/-1", "A=1..2/x", "A=1..2.../1", "A=1..1000/1", "A=1.../1",
                           "A=1..99999999999999/1", "A=1..2/0.0000001", "A=1..2/1/1"}) {
    EXPECT_FALSE(readSheetOption(text).has_value()) << text;
  }
  EXPECT_EQ(valuesOf("A=1..256/1").size(), 256U);
  EXPECT_FALSE(readSheetOption("A=0,1..256/1").has_value());
}

TEST(NearestName, IsTheOneThatASlipMadeOfIt) {
  const Words names = {"RedMinValue", "RedMaxValue", "PageSize", "cpi", "media"};
  EXPECT_EQ(nearestName("RedMinValeu", names), "RedMinValue");
  EXPECT_EQ(nearestName("redminvalue", names), "RedMinValue");
  EXPECT_EQ(nearestName("RedMixValue", names), "RedMinValue");
  EXPECT_EQ(nearestName("Page-Size", names), "PageSize");
  EXPECT_EQ(nearestName("dpi", names), "cpi");
  EXPECT_EQ(nearestName("medi", names), "media");
  EXPECT_FALSE(nearestName("Nope", names).has_value());
  EXPECT_FALSE(nearestName("RedValue", names).has_value());
  EXPECT_FALSE(nearestName("x", names).has_value());
  EXPECT_FALSE(nearestName("", names).has_value());
}

}  // namespace
}  // namespace velka::view
