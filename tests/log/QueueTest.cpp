// The record pool, the queue and the rule that holds the loggers back.
#include <csignal>
#include <new>
#include <random>

#include "LogTestSupport.h"
#include "PendingQueue.h"
#include "RecordPool.h"

using velka::delayFor;
using velka::excessPercent;
using velka::PushDelay;
using velka::RecordPool;

namespace {

std::size_t lastSize = 0;

void* dirtyAllocate(std::size_t size) {
  lastSize = size;
  void* const block = std::malloc(size);
  if (block != nullptr) {
    std::memset(block, 0xAB, size);
  }
  return block;
}

void* noMemory(std::size_t /*size*/) {
  return nullptr;
}

struct Outcome {
  int draws = 0;
  int recounts = 0;
  std::vector<std::size_t> sleeps;
  bool operator==(const Outcome&) const = default;
};

Outcome apply(std::size_t pending, int draw, std::size_t later) {
  Outcome seen;
  velka::applyBackPressure(
      pending,
      [&] {
        ++seen.draws;
        return draw;
      },
      [&] {
        ++seen.recounts;
        return later;
      },
      [&](std::size_t ms) { seen.sleeps.push_back(ms); });
  return seen;
}

// The rule as it is put in words.
Outcome applyPlainly(std::size_t n, int draw, std::size_t later) {
  Outcome seen;
  if (n <= 20000) {
    return seen;
  }
  std::size_t p = (100 * n - 2000000) / 20000;
  if (p <= 100) {
    ++seen.draws;
    if (p <= static_cast<std::size_t>(draw % 100)) {
      return seen;
    }
    if (p <= 50) {
      seen.sleeps.push_back(p);
      return seen;
    }
  }
  p = p > 100 ? 100 : p;
  ++seen.recounts;
  if (later > 20000) {
    seen.sleeps.push_back(p);
  }
  return seen;
}

}  // namespace

TEST(RecordPool, NewRecordIsOneBlockWithAZeroedHeader) {
  RecordPool pool(dirtyAllocate);
  LogData* const record = pool.take();
  EXPECT_EQ(lastSize, sizeof(LogData));
  const std::string header(reinterpret_cast<const char*>(record), offsetof(LogData, content));
  EXPECT_EQ(header, std::string(36, '\0'));
  EXPECT_EQ(static_cast<unsigned char>(record->content[0]), 0xAB);
  pool.giveBack(record);
}

TEST(RecordPool, GivesTheRecordLastGivenBack) {
  RecordPool pool;
  LogData* const first = pool.take();
  LogData* const second = pool.take();
  second->level = 4;
  pool.giveBack(first);
  pool.giveBack(second);
  EXPECT_EQ(pool.idle(), 2U);
  LogData* const again = pool.take();
  EXPECT_EQ(again, second);
  EXPECT_EQ(again->level, 4);
  pool.giveBack(again);
}

TEST(RecordPool, KeepsTwoHundredAndFreesTheNext) {
  RecordPool pool;
  std::vector<LogData*> records;
  records.reserve(201);
  for (int i = 0; i < 201; ++i) {
    records.push_back(pool.take());
  }
  for (std::size_t i = 0; i < 200; ++i) {
    pool.giveBack(records[i]);
  }
  EXPECT_EQ(pool.idle(), 200U);
  pool.giveBack(records[200]);
  EXPECT_EQ(pool.idle(), 200U);
  LogData* const last = pool.take();
  EXPECT_EQ(last, records[199]);
  pool.giveBack(last);
  pool.clear();
  EXPECT_EQ(pool.idle(), 0U);
}

TEST(RecordPool, NullIsIgnored) {
  RecordPool pool;
  pool.giveBack(nullptr);
  EXPECT_EQ(pool.idle(), 0U);
}

TEST(RecordPoolDeathTest, WithoutMemoryTheProcessEndsByAWriteThroughNull) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  RecordPool pool(noMemory);
  EXPECT_EXIT(
      {
        // Sanitizers have a handler of their own.
        std::signal(SIGSEGV, SIG_DFL);
        static_cast<void>(pool.take());
      },
      ::testing::KilledBySignal(SIGSEGV), "");
}

TEST(PendingQueue, GivesRecordsInOrderAndCountsThem) {
  velka::PendingQueue queue;
  LogData records[2] = {};
  EXPECT_EQ(queue.pop(), nullptr);
  queue.push(&records[0]);
  queue.push(&records[1]);
  EXPECT_EQ(queue.size(), 2U);
  EXPECT_EQ(queue.pop(), &records[0]);
  EXPECT_EQ(queue.pop(), &records[1]);
  EXPECT_EQ(queue.pop(), nullptr);
  EXPECT_EQ(queue.size(), 0U);
  EXPECT_EQ(queue.pushed(), 2U);
  EXPECT_EQ(queue.popped(), 2U);
}

TEST(BackPressure, ExcessIsPercentOfTheBoundRoundedDown) {
  EXPECT_EQ(excessPercent(0), 0U);
  EXPECT_EQ(excessPercent(20000), 0U);
  EXPECT_EQ(excessPercent(20199), 0U);
  EXPECT_EQ(excessPercent(20200), 1U);
  EXPECT_EQ(excessPercent(30000), 50U);
  EXPECT_EQ(excessPercent(40000), 100U);
  EXPECT_EQ(excessPercent(40200), 101U);
  EXPECT_GT(excessPercent(SIZE_MAX), 100U);
}

TEST(BackPressure, ChanceDecidesAtFirstAndTheQueueLater) {
  EXPECT_EQ(delayFor(0, 0), PushDelay::None);
  EXPECT_EQ(delayFor(50, 50), PushDelay::None);
  EXPECT_EQ(delayFor(50, 49), PushDelay::Sleep);
  EXPECT_EQ(delayFor(51, 51), PushDelay::None);
  EXPECT_EQ(delayFor(51, 50), PushDelay::SleepIfStillFull);
  EXPECT_EQ(delayFor(100, 99), PushDelay::SleepIfStillFull);
  EXPECT_EQ(delayFor(101, 99), PushDelay::SleepIfStillFull);
}

TEST(BackPressure, NothingHappensUpToTheBound) {
  EXPECT_EQ(apply(0, 0, 50000), Outcome{});
  EXPECT_EQ(apply(20000, 0, 50000), Outcome{});
}

TEST(BackPressure, SleepsAHundredMillisecondsAtMost) {
  EXPECT_EQ(apply(1000000, 0, 20001), (Outcome{0, 1, {100}}));
  EXPECT_EQ(apply(1000000, 0, 20000), (Outcome{0, 1, {}}));
}

TEST(BackPressure, AgreesWithTheRuleInWords) {
  std::mt19937 random(3);
  for (int i = 0; i < 50000; ++i) {
    const std::size_t pending = random() % 45000;
    const int draw = static_cast<int>(random() % 1000000);
    const std::size_t later = 19990 + random() % 20;
    ASSERT_EQ(apply(pending, draw, later), applyPlainly(pending, draw, later)) << pending;
  }
}
