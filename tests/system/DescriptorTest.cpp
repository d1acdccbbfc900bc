// Reading all that a descriptor has.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <thread>

#include "Descriptor.h"

namespace {

using velka::readAll;
using velka::UniqueFd;

struct Pipe {
  Pipe() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    out = UniqueFd(ends[0]);
    in = UniqueFd(ends[1]);
  }
  UniqueFd out;
  UniqueFd in;
};

TEST(ReadAll, TakesAStreamThatComesInPieces) {
  Pipe pipe;
  std::thread writer([&] {
    for (const char* piece : {"a", "bc", "def"})
      EXPECT_GT(write(pipe.in.get(), piece, std::char_traits<char>::length(piece)), 0);
    pipe.in = UniqueFd();
  });
  std::array<uint8_t, 10> bytes = {};
  EXPECT_EQ(readAll(pipe.out.get(), bytes), 6U);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 6), "abcdef");
  writer.join();
}

TEST(ReadAll, StopsWhereTheBufferIsFull) {
  const Pipe pipe;
  ASSERT_EQ(write(pipe.in.get(), "abc", 3), 3);
  std::array<uint8_t, 2> bytes = {};
  EXPECT_EQ(readAll(pipe.out.get(), bytes), 2U);
}

TEST(ReadAll, SaysWhyItFailed) {
  std::array<uint8_t, 2> bytes = {};
  EXPECT_EQ(readAll(-1, bytes), 0U);
  EXPECT_EQ(errno, EBADF);
}

std::atomic<int> signalsSeen = 0;
void noteSignal(int /*signal*/) {
  ++signalsSeen;
}

// Signals whose handler does not let the call go on (no SA_RESTART) come before there is
// anything to read.
TEST(ReadAll, GoesOnAfterASignal) {
  struct sigaction interrupt = {};
  struct sigaction before = {};
  interrupt.sa_handler = noteSignal;
  sigaction(SIGUSR1, &interrupt, &before);
  signalsSeen = 0;
  const Pipe pipe;
  const pthread_t reader = pthread_self();
  std::thread writer([&] {
    for (int seen = 0; seen < 100; seen = signalsSeen) {
      pthread_kill(reader, SIGUSR1);
      while (signalsSeen == seen) std::this_thread::yield();
    }
    EXPECT_EQ(write(pipe.in.get(), "ab", 2), 2);
  });
  std::array<uint8_t, 2> bytes = {};
  EXPECT_EQ(readAll(pipe.out.get(), bytes), 2U);
  writer.join();
  sigaction(SIGUSR1, &before, nullptr);
}

}  // namespace
