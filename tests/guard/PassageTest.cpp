// Whatever comes in goes out unchanged, and every end is a defined one.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <random>

#include "guard/GuardJob.h"
#include "guard/OtherOrder.h"
#include "support/Sweep.h"

namespace {

using namespace velka::testing;

// Through a pipe, as between filters, in odd pieces.
FilterResult throughPipes(const Bytes& raster, unsigned seed) {
  FilterJob job;
  job.mostSeconds = 300;
  job.feed = [&](int /*pid*/, int fd) {
    std::mt19937 random(seed);
    for (size_t at = 0; at < raster.size();) {
      const size_t n = std::min<size_t>(raster.size() - at, 1 + random() % 5000);
      if (write(fd, raster.data() + at, n) != static_cast<ssize_t>(n)) break;
      at += n;
    }
  };
  return runFilter(VELKA_GUARD, job);
}

TEST(PassedOn, EveryVersionIsUnchangedAndCounted) {
  const auto pages = twoPages();
  unsigned seed = 0;
  for (const Bytes& stream :
       {rasterStream(pages), rasterStream(pages, CUPS_RASTER_WRITE_COMPRESSED),
        rasterStream(pages, CUPS_RASTER_WRITE_PWG), inOtherOrder(pages), ofVersionOne(pages)}) {
    for (const FilterResult& result : {guarded(stream), throughPipes(stream, ++seed)}) {
      EXPECT_EQ(result.status, 0);
      EXPECT_EQ(result.output, stream);
      EXPECT_EQ(told(result, "PAGE"), (Texts{"1 1", "2 1"}));
      EXPECT_EQ(told(result, "ERROR"), Texts{});
    }
  }
}

TEST(PassedOn, ARasterThatEndsAnywhereIsUnchangedAndToldOf) {
  for (const auto mode : {CUPS_RASTER_WRITE, CUPS_RASTER_WRITE_COMPRESSED}) {
    const Bytes whole = rasterStream(twoPages(), mode);
    const size_t first = rasterStream({twoPages()[0]}, mode).size();
    std::mt19937 random(7);
    for (int round = 0; round < amount(12, 12, 3); ++round) {
      const size_t end = 5 + random() % (whole.size() - 6);
      if (end == first) continue;
      const FilterResult result = guarded(firstBytes(whole, end));
      EXPECT_EQ(result.output, firstBytes(whole, end));
      EXPECT_EQ(result.status, 1);
      ASSERT_EQ(told(result, "ERROR").size(), 1U) << end;
      EXPECT_EQ(told(result, "ERROR")[0].substr(0, 16), "The raster ends ");
    }
  }
}

// Behind a first page that prints, so that nothing is kept back.
TEST(PassedOn, DamageOfAnyKindGoesThroughUnchanged) {
  std::mt19937 random(11);
  for (int round = 0; round < amount(40, 40, 10); ++round) {
    const auto mode = round % 2 == 0 ? CUPS_RASTER_WRITE : CUPS_RASTER_WRITE_COMPRESSED;
    Bytes stream = rasterStream(twoPages(), mode);
    const size_t first = rasterStream({twoPages()[0]}, mode).size();
    for (int hit = 0; hit < 6; ++hit)
      stream[first + random() % std::min<size_t>(stream.size() - first, 2500)] =
          static_cast<uint8_t>(random());
    EXPECT_EQ(guarded(stream).output, stream) << round;
  }
}

TEST(PassedOn, WhatIsNoRasterGoesThroughAndFailsTheJob) {
  const std::vector<std::string> texts = {"%PDF-1.4 of somebody", "RaS", std::string(300000, 'x')};
  for (const std::string& text : texts) {
    const Bytes bytes(text.begin(), text.end());
    const FilterResult result = guarded(bytes);
    EXPECT_EQ(result.output, bytes);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(told(result, "ERROR"),
              (Texts{"What came to be printed is no CUPS raster, so that nothing is printed"}));
  }
}

TEST(PassedOn, NothingIsNothingAndAStreamWithoutAPageIsTold) {
  EXPECT_EQ(guarded({}).status, 0);
  EXPECT_EQ(told(guarded({}), "ERROR"), Texts{});
  const Bytes sync = firstBytes(rasterStream(twoPages()), 4);
  const FilterResult result = guarded(sync);
  EXPECT_EQ(result.output, sync);
  EXPECT_EQ(told(result, "ERROR"), (Texts{"The raster holds no page, so that nothing is printed"}));
}

TEST(PassedOn, AReaderThatIsGoneIsNoError) {
  FilterJob job;
  job.input = rasterStream(twoPages());
  job.outputBroken = true;
  const FilterResult result = runFilter(VELKA_GUARD, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(told(result, "ERROR"), Texts{});
  EXPECT_EQ(told(result, "PAGE"), Texts{});
}

TEST(PassedOn, AnOutputThatIsFullIsToldOfAndFailsTheJob) {
  FilterJob job;
  job.input = rasterStream(twoPages());
  job.beforeStart = [] { dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO); };
  const FilterResult result = runFilter(VELKA_GUARD, job);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(told(result, "ERROR"), (Texts{"Cannot pass the raster on: No space left on device"}));
}

TEST(PassedOn, AnInputThatCannotBeReadOrOpenedIsToldOfAndFailsTheJob) {
  FilterJob job;
  job.arguments.emplace_back("/nonexistent/raster");
  EXPECT_EQ(told(runFilter(VELKA_GUARD, job), "ERROR"),
            (Texts{"Cannot open /nonexistent/raster: No such file or directory"}));
  job.arguments.back() = "/";
  const FilterResult folder = runFilter(VELKA_GUARD, job);
  EXPECT_EQ(folder.status, 1);
  EXPECT_EQ(told(folder, "ERROR"), (Texts{"Cannot read the raster: Is a directory"}));
  job.arguments.resize(3);
  EXPECT_EQ(runFilter(VELKA_GUARD, job).status, 1);
}

TEST(PassedOn, ARasterMayBeAFile) {
  const Bytes stream = rasterStream(twoPages());
  const TempFile file(std::string(stream.begin(), stream.end()), ".ras");
  FilterJob job;
  job.arguments.push_back(file.path());
  const FilterResult result = runFilter(VELKA_GUARD, job);
  EXPECT_EQ(result.output, stream);
  EXPECT_EQ(result.status, 0);
}

// Standard input as some services leave it.
TEST(PassedOn, DescriptorsThatDoNotBlockAreWaitedFor) {
  const Bytes stream = rasterStream(twoPages(), CUPS_RASTER_WRITE_COMPRESSED);
  FilterJob job;
  job.mostSeconds = 300;
  job.feed = [&](int /*pid*/, int fd) {
    for (const uint8_t& byte : firstBytes(stream, 30))
      if (write(fd, &byte, 1) == 1) usleep(1000);
    (void)!write(fd, stream.data() + 30, stream.size() - 30);
  };
  job.drain = [](int /*pid*/, int fd) { return readToEnd(fd); };
  job.beforeStart = [] {
    fcntl(STDIN_FILENO, F_SETFL, fcntl(STDIN_FILENO, F_GETFL) | O_NONBLOCK);
    fcntl(STDOUT_FILENO, F_SETFL, fcntl(STDOUT_FILENO, F_GETFL) | O_NONBLOCK);
  };
  const FilterResult result = runFilter(VELKA_GUARD, job);
  EXPECT_EQ(result.output, stream);
  EXPECT_EQ(result.status, 0);
}

}  // namespace
