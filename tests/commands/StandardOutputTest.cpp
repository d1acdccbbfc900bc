// Writing to a printer that takes its bytes slowly or not at all.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "StandardOutput.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

Bytes pattern(size_t size) {
  Bytes bytes(size);
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 251);
  return bytes;
}

// What a reader gets that takes odd little pieces, while `bytes` are written.
Bytes readBack(const Bytes& bytes, int writeFlags, size_t& written) {
  int ends[2] = {};
  if (pipe(ends) != 0) return {};
  fcntl(ends[1], F_SETFL, writeFlags);
  Bytes got;
  std::thread reader([&] {
    Bytes piece(777);
    for (ssize_t n = 0; (n = read(ends[0], piece.data(), piece.size())) > 0;)
      got.insert(got.end(), piece.begin(), piece.begin() + n);
  });
  written = writeAll(ends[1], bytes);
  close(ends[1]);
  reader.join();
  close(ends[0]);
  return got;
}

TEST(StandardOutput, IsWrittenToTheEndThroughASlowPipe) {
  const Bytes bytes = pattern(1 << 20);
  size_t written = 0;
  EXPECT_EQ(readBack(bytes, 0, written), bytes);
  EXPECT_EQ(written, bytes.size());
}

TEST(StandardOutput, IsWrittenToTheEndThroughANonBlockingPipe) {
  const Bytes bytes = pattern(1 << 20);
  size_t written = 0;
  EXPECT_EQ(readBack(bytes, O_NONBLOCK, written), bytes);
  EXPECT_EQ(written, bytes.size());
}

TEST(StandardOutput, ABrokenPipeEndsTheWrite) {
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  int ends[2] = {};
  ASSERT_EQ(pipe(ends), 0);
  close(ends[0]);
  EXPECT_EQ(writeAll(ends[1], pattern(100)), 0U);
  close(ends[1]);
  std::signal(SIGPIPE, before);
}

TEST(StandardOutput, AClosedDescriptorEndsTheWrite) {
  EXPECT_EQ(writeAll(-1, pattern(3)), 0U);
}

void doNothing(int /*signal*/) {}

TEST(StandardOutput, InterruptionsDoNotLoseBytes) {
  struct sigaction action = {};
  action.sa_handler = doNothing;  // without SA_RESTART: write() returns early
  struct sigaction before = {};
  sigaction(SIGUSR1, &action, &before);
  int ends[2] = {};
  ASSERT_EQ(pipe(ends), 0);
  const Bytes bytes = pattern(1 << 20);
  const pthread_t writer = pthread_self();
  Bytes got;
  std::thread reader([&] {
    Bytes piece(4096);
    while (got.size() < bytes.size()) {
      pthread_kill(writer, SIGUSR1);
      const ssize_t n = read(ends[0], piece.data(), piece.size());
      if (n <= 0) break;
      got.insert(got.end(), piece.begin(), piece.begin() + n);
    }
  });
  EXPECT_EQ(writeAll(ends[1], bytes), bytes.size());
  reader.join();
  EXPECT_EQ(got, bytes);
  close(ends[0]);
  close(ends[1]);
  sigaction(SIGUSR1, &before, nullptr);
}

// Writes to standard output while it takes no more than `room` bytes.
size_t writeIntoLimit(const Bytes& bytes, size_t room) {
  rlimit before = {};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto action = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small = {room, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const size_t written = writeToPrinter(bytes);
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, action);
  return written;
}

// A disk that has room again, a reader that comes back: what was lost stays lost, and
// the rest would be taken for something else.
TEST(Printer, GetsNothingMoreAfterAWriteThatFailed) {
  const Bytes bytes = pattern(100);
  {
    const Capture output(STDOUT_FILENO);
    EXPECT_EQ(writeToPrinter(bytes), 100U);
    EXPECT_EQ(writeIntoLimit(bytes, 130), 30U);
    EXPECT_EQ(writeToPrinter(bytes), 0U);
    EXPECT_EQ(writeToPrinter({}), 0U);
    EXPECT_EQ(output.bytes().size(), 130U);
  }
  // Another standard output has no hole, and the copier's files never had one.
  const Capture other(STDOUT_FILENO);
  EXPECT_EQ(writeToPrinter(bytes), 100U);
  EXPECT_EQ(writeAll(STDOUT_FILENO, bytes), 100U);
  EXPECT_EQ(other.bytes().size(), 200U);
}

}  // namespace
}  // namespace velka::testing
