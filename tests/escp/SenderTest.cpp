// The senders of the public surface: what they write for a document, a page and a command.
#include <gtest/gtest.h>
#include <unistd.h>

#include "escp/PageFixture.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

// What starts a document of the job's page.
Bytes startOf(Job& job) {
  job.pdev.devModeOut = job.mode;
  job.pdev.devGdiInfo = job.pdev.srcGdiInfo;
  const Capture capture(STDOUT_FILENO);
  EXPECT_TRUE(job.pdev.pEscpSml->SendStartDocCmd(&job.devobj));
  return capture.bytes();
}

TEST(Senders, StartOfDocumentCarriesThePageLengthInLines) {
  Job job(100, 3960, 360, 360);
  EXPECT_EQ(startOf(job), (Bytes{0x1B, 0x40, 0x1B, 0x32, 0x1B, 0x43, 0x42}));
}

TEST(Senders, PageLengthWrapsAt256Lines) {
  Job job(100, 16000, 360, 360);
  EXPECT_EQ(startOf(job).back(), 0x0A);
}

TEST(Senders, LandscapePageLengthComesFromTheWidth) {
  Job job(1800, 100, 180, 360);
  job.mode.dmOrientation = 2;
  EXPECT_EQ(startOf(job).back(), 60);
}

TEST(Senders, EndOfDocumentIsAReset) {
  CESCPSML generator;
  const Capture capture(STDOUT_FILENO);
  EXPECT_TRUE(generator.SendEndDocCmd(nullptr));
  EXPECT_EQ(capture.bytes(), (Bytes{0x1B, 0x40}));
}

TEST(Senders, EndOfPageIsAFormFeed) {
  CESCPSML generator;
  const Capture capture(STDOUT_FILENO);
  EXPECT_TRUE(generator.SendEndPageCmd(nullptr));
  EXPECT_EQ(capture.bytes(), Bytes{0x0C});
}

TEST(Senders, SendCommandReturnsTheBytesWritten) {
  CESCPSML generator;
  const Bytes data = {1, 2, 3};
  const Capture capture(STDOUT_FILENO);
  EXPECT_EQ(generator.SendCommand(nullptr, data.data(), 3, 0, nullptr), 3U);
  EXPECT_EQ(generator.SendCommand(nullptr, nullptr, 3, 0, nullptr), 0U);
  EXPECT_EQ(capture.bytes(), data);
}

TEST(Senders, AnIncompleteHandleSendsNothing) {
  CESCPSML generator;
  _DEVOBJ empty = {};
  const Capture capture(STDOUT_FILENO);
  EXPECT_FALSE(generator.SendStartDocCmd(&empty));
  EXPECT_FALSE(generator.SendStartDocCmd(nullptr));
  EXPECT_FALSE(generator.SendEjectModeCmd(&empty));
  EXPECT_EQ(generator.SendCurPage3(nullptr, false), 0);
  EXPECT_EQ(generator.EncodeAndSend(&empty, 0), 0);
  EXPECT_EQ(capture.bytes(), Bytes{});
}
}  // namespace
}  // namespace velka::testing
