// The wrappers over thread, mutex and semaphore.
#include <csignal>
#include <thread>

#include "LogTestSupport.h"
#include "LogThreading.h"

namespace {

class Worker : public ThreadHelper {
 public:
  ~Worker() override {
    released = true;
    joinThread();
  }
  void run() noexcept override {
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    terminationBlocked = sigismember(&blocked, SIGTERM) == 1;
    faultBlocked = sigismember(&blocked, SIGSEGV) == 1;
    ++runs;
    while (!released) {
      usleep(1000);
    }
  }
  std::atomic<bool> released = false;
  std::atomic<bool> terminationBlocked = false;
  std::atomic<bool> faultBlocked = true;
  std::atomic<int> runs = 0;
};

}  // namespace

TEST(SemHelper, CountsPostsAndWaits) {
  SemHelper semaphore;
  EXPECT_FALSE(semaphore.wait(1));
  EXPECT_FALSE(semaphore.post());
  ASSERT_TRUE(semaphore.create(1));
  EXPECT_TRUE(semaphore.wait(0));
  EXPECT_FALSE(semaphore.wait(1));
  EXPECT_TRUE(semaphore.post());
  EXPECT_TRUE(semaphore.wait(1));
  ASSERT_TRUE(semaphore.create(0));
  EXPECT_FALSE(semaphore.wait(60));
}

TEST(SemHelper, WaitsForAnotherThread) {
  SemHelper semaphore;
  ASSERT_TRUE(semaphore.create(0));
  std::thread poster([&] {
    semaphore.post();
    semaphore.post();
  });
  EXPECT_TRUE(semaphore.wait(-1));
  EXPECT_TRUE(semaphore.wait(60000));
  poster.join();
}

TEST(LockHelper, KeepsASecondThreadOut) {
  LockHelper lock;
  int counter = 0;
  const auto count = [&] {
    for (int i = 0; i < 20000; ++i) {
      lock.lock();
      ++counter;
      lock.unLock();
    }
  };
  std::thread other(count);
  count();
  other.join();
  EXPECT_EQ(counter, 40000);
}

TEST(ThreadHelper, RunsOneThreadAtATimeAndMayRunAgain) {
  Worker worker;
  EXPECT_FALSE(worker.joinThread());
  ASSERT_TRUE(worker.startThread());
  EXPECT_TRUE(worker.isWorking());
  EXPECT_FALSE(worker.startThread());
  worker.released = true;
  EXPECT_TRUE(worker.joinThread());
  EXPECT_FALSE(worker.isWorking());
  EXPECT_TRUE(worker.startThread());
  EXPECT_TRUE(worker.joinThread());
  EXPECT_EQ(worker.runs, 2);
}

// Its destructor is the last that can wait, for whoever forgot to.
class Careless : public ThreadHelper {
 public:
  void run() noexcept override {
    begun = true;
    while (!released) {
      usleep(1000);
    }
    usleep(20000);
    ended = true;
  }
  // Not of the object, which may be gone.
  static inline std::atomic<bool> begun = false;
  static inline std::atomic<bool> released = false;
  static inline std::atomic<bool> ended = false;
};

TEST(ThreadHelper, WaitsForItsThreadWhenItGoes) {
  {
    Careless careless;
    ASSERT_TRUE(careless.startThread());
    ASSERT_TRUE(logtest::eventually([] { return Careless::begun.load(); }));
    Careless::released = true;
  }
  EXPECT_TRUE(Careless::ended);
}

/// This process's address space in bytes.
std::size_t addressSpace() {
  std::ifstream statm("/proc/self/statm");
  std::size_t pages = 0;
  statm >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// A thread keeps its stack until somebody has waited for it.
TEST(ThreadHelper, StartingAgainLetsGoOfTheThreadThatEnded) {
  constexpr std::size_t kRounds = 60;
  constexpr std::size_t kStack = std::size_t{1} << 20U;  // less than any thread has
  Worker worker;
  worker.released = true;
  const auto runOnce = [&] {
    ASSERT_TRUE(worker.startThread());
    ASSERT_TRUE(logtest::eventually([&] { return !worker.isWorking(); }));
  };
  runOnce();
  const std::size_t before = addressSpace();
  for (std::size_t round = 0; round < kRounds; ++round) {
    runOnce();
  }
  EXPECT_LT(addressSpace(), before + kRounds * kStack);
}

TEST(ThreadHelper, LeavesSignalsToTheOtherThreads) {
  Worker worker;
  worker.released = true;
  ASSERT_TRUE(worker.startThread());
  EXPECT_TRUE(worker.joinThread());
  EXPECT_TRUE(worker.terminationBlocked);
  EXPECT_FALSE(worker.faultBlocked);
  sigset_t here;
  pthread_sigmask(SIG_SETMASK, nullptr, &here);
  EXPECT_EQ(sigismember(&here, SIGTERM), 0);
}
