#include <gtest/gtest.h>

#include "Rasters.h"
#include "TestPage.h"

namespace velka::serve {
namespace {

TEST(TestPage, IsTheSamePdfEachTimeWithAnIndexThatFits) {
  const auto bytes = testPage();
  EXPECT_EQ(bytes, testPage());
  const std::string pdf(bytes.begin(), bytes.end());
  EXPECT_TRUE(pdf.starts_with("%PDF-1.4\n"));
  const size_t start = std::stoul(pdf.substr(pdf.rfind("startxref\n") + 10));
  EXPECT_EQ(pdf.substr(start, 5), "xref\n");
  std::string entries = pdf.substr(start + 5);
  entries.erase(0, entries.find('\n') + 21);
  for (int object = 1; object <= 7; ++object, entries.erase(0, 20)) {
    const size_t place = std::stoul(entries.substr(0, 10));
    EXPECT_EQ(pdf.substr(place, 7), std::to_string(object) + " 0 obj");
  }
}

}  // namespace
}  // namespace velka::serve
