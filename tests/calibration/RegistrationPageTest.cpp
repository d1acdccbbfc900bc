// The verniers of the registration page, and which pass strikes what.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "RegistrationPage.h"

namespace velka::calibration {
namespace {

constexpr int kDot = 2;  // of 1/180 inch in dots of the page

// The numbers whose two lines meet where the moving ones are displaced.
std::vector<int> meetings(const Vernier& vernier, double displaced) {
  std::vector<int> numbers;
  for (int number = -vernier.steps; number <= vernier.steps; ++number) {
    const DotBox fixed = fixedLine(vernier, number);
    const DotBox moving = movingLine(vernier, number);
    const double apart =
        vernier.down ? moving.top + displaced - fixed.top : moving.left + displaced - fixed.left;
    if (apart == 0) numbers.push_back(number);
  }
  return numbers;
}

const DotDrawing& registration() {
  static const Drawn drawn = registrationPage({});
  return std::get<DotDrawing>(drawn);
}

bool isOnPage(const DotBox& wanted) {
  return std::ranges::any_of(registration().boxes, [&](const DotBox& box) {
    return box.left == wanted.left && box.top == wanted.top && box.width == wanted.width &&
           box.height == wanted.height && box.colour == wanted.colour;
  });
}

TEST(Vernier, MeetsAtTheNumberOfStepsThatItsMovingLinesAreDisplacedAndNowhereElse) {
  const RegistrationFields fields = registrationFields();
  for (const Vernier& vernier : {fields.across, fields.along, fields.passesAcross}) {
    EXPECT_EQ(vernier.step, kDot);
    for (int steps = -10; steps <= 10; ++steps) {
      EXPECT_EQ(meetings(vernier, steps * kDot), std::vector<int>{steps});
    }
  }
}

TEST(Vernier, OfTheInksHasBlackLinesThatStayAndRedOnesThatMove) {
  const RegistrationFields fields = registrationFields();
  for (const Vernier& vernier : {fields.across, fields.along}) {
    for (const int number : {-10, 0, 10}) {
      EXPECT_EQ(fixedLine(vernier, number).colour, kBlack);
      EXPECT_EQ(movingLine(vernier, number).colour, kRed);
      EXPECT_TRUE(isOnPage(fixedLine(vernier, number)));
      EXPECT_TRUE(isOnPage(movingLine(vernier, number)));
    }
  }
  EXPECT_GT(fixedLine(fields.along, 0).width, fixedLine(fields.along, 0).height);
  EXPECT_GT(fixedLine(fields.across, 0).height, fixedLine(fields.across, 0).width);
}

TEST(RegistrationPage, HasASecondPassHalfwayBetweenTheLinesOfTheFirstWhereItIsDisplaced) {
  const Betweens betweens = registrationFields().passesAlong;
  for (int steps = -betweens.steps; steps <= betweens.steps; ++steps) {
    for (int number = -betweens.steps; number <= betweens.steps; ++number) {
      const double above = middleLine(betweens, number).top + steps * kDot;
      const double up = above - upperLine(betweens, number).top;
      const double down = lowerLine(betweens, number).top - above;
      EXPECT_EQ(up == down, number == steps);
    }
  }
}

// The field's first row is struck by the first pass, so every second from it on is.
TEST(RegistrationPage, DrawsTheFirstPassInEvenRowsOfAFieldAndTheSecondInOddOnes) {
  const RegistrationFields fields = registrationFields();
  const auto parity = [](double row) { return static_cast<int>(row) % 2; };
  const int first = parity(fields.passesAcross.fixedAt);
  EXPECT_NE(parity(fields.passesAcross.movingAt), first);
  const Betweens& along = fields.passesAlong;
  for (int number = -along.steps; number <= along.steps; ++number) {
    EXPECT_EQ(parity(upperLine(along, number).top), parity(along.top));
    EXPECT_EQ(parity(lowerLine(along, number).top), parity(along.top));
    EXPECT_NE(parity(middleLine(along, number).top), parity(along.top));
    EXPECT_GT(middleLine(along, number).top, along.top);
  }
  int dotted = 0;
  for (const DotBox& box : registration().boxes) {
    const double row = box.top - fields.passesAcross.fixedAt;
    if (box.width != 1 || row < 0 || row >= 36) continue;
    EXPECT_EQ(box.height, 1);
    EXPECT_EQ(static_cast<int>(row) % 2, row < 18 ? 0 : 1);
    ++dotted;
  }
  constexpr int kDotted = 21 * 2 * 9;
  EXPECT_EQ(dotted, kDotted);
}

// Both heads strike such a field with two passes from one place: the Orlo head has 18
// black dots, the standard one reaches 48 rows up.
TEST(RegistrationPage, FieldsOfThePassesAreAHeadHighAndABandBelowAllElse) {
  const RegistrationFields fields = registrationFields();
  constexpr int kBandRows = 48;
  for (const int top : {fields.passesAcross.fixedAt, fields.passesAlong.top}) {
    for (const DotBox& box : registration().boxes) {
      EXPECT_TRUE(box.top + box.height <= top - kBandRows + 1 || box.top >= top);
    }
  }
  EXPECT_LE(fields.passesAcross.movingAt + 18 - fields.passesAcross.fixedAt, 2 * 18 + 1);
  EXPECT_LE(fields.passesAlong.apart + 1, 2 * 18);
}

}  // namespace
}  // namespace velka::calibration
