#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "ColorManagment.h"

namespace {

TEST(ColorLight, ParametersAreStored) {
  CColorManagment color;
  color.SetBrightParam(-3, 12);
  EXPECT_EQ(color.m_nBright, -3);
  EXPECT_EQ(color.m_nContrast, 12);
}

TEST(ColorLight, WorkVectorIsTheColourThroughATableOfItsOwn) {
  CColorManagment color;
  EXPECT_EQ(color.Light(20, 0), 0);
  color.SetRGB(0, 102, 255);
  EXPECT_EQ(color.Light(20, 0), 1);
  EXPECT_EQ(color.m_pWork[0], 20 / 255.0);
  EXPECT_EQ(color.m_pWork[1], 122 / 255.0);
  EXPECT_EQ(color.m_pWork[2], 1.0);
  // What fits no integer lies below all of them.
  color.m_pColor[0] = 1e30;
  color.m_pColor[1] = -1e30;
  EXPECT_EQ(color.Light(20, 0), 1);
  EXPECT_EQ(color.m_pWork[0], 20 / 255.0);
  EXPECT_EQ(color.m_pWork[1], 20 / 255.0);
}

TEST(ShellSort, SortsNumbersOfEveryLength) {
  CColorManagment color;
  std::mt19937 random(3);
  for (int n = 0; n < 70; ++n) {
    std::vector<unsigned int> numbers(static_cast<size_t>(n));
    std::generate(numbers.begin(), numbers.end(), [&] { return static_cast<unsigned>(random()); });
    std::vector<unsigned int> expected = numbers;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(color.ShellSort(numbers.data(), n), 1);
    EXPECT_EQ(numbers, expected);
  }
  unsigned int one = 5;
  EXPECT_EQ(color.ShellSort(&one, -4), 1);
  EXPECT_EQ(one, 5U);
  EXPECT_EQ(color.ShellSort(nullptr, 9), 1);
}

}  // namespace
