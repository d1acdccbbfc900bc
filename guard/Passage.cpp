#include "Passage.h"

#include <fcntl.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include "Descriptor.h"
#include "SignalsHeldBack.h"
#include "StandardOutput.h"

namespace velka {
namespace {

// read() that waits where it would not.
ssize_t readWaiting(int fd, std::span<uint8_t> bytes) noexcept {
  for (;;) {
    const ssize_t n = readSome(fd, bytes);
    if (n >= 0 || (errno != EAGAIN && errno != EWOULDBLOCK)) return n;
    pollfd ready = {fd, POLLIN, 0};
    if (poll(&ready, 1, -1) < 0 && errno != EINTR) return -1;
  }
}

}  // namespace

bool RasterPassage::waits(const volatile std::sig_atomic_t& cancelled) const noexcept {
  {
    // It comes through while we wait, and so never between the look at the flag and the sleep.
    const SignalsHeldBack held({SIGTERM});
    pollfd input = {from_, POLLIN, 0};
    // What cannot be waited for is read, which says why.
    while (cancelled == 0 && begin_ == end_ && ppoll(&input, 1, nullptr, &held.before()) < 0 &&
           errno == EINTR) {
    }
  }
  return cancelled == 0;
}

size_t RasterPassage::read(std::span<uint8_t> bytes) noexcept {
  const size_t held = std::min(bytes.size(), end_ - begin_);
  std::memcpy(bytes.data(), piece_.data() + begin_, held);
  begin_ += held;
  size_t done = held;
  while (done < bytes.size() && readError_ == 0) {
    const ssize_t n = readWaiting(from_, bytes.subspan(done));
    if (n == 0) break;
    if (n < 0) {
      readError_ = errno;
    } else {
      done += static_cast<size_t>(n);
    }
  }
  return done;
}

bool RasterPassage::write(std::span<const uint8_t> bytes) noexcept {
  if (writeError_ != 0) return false;
  if (writeAll(to_, bytes) == bytes.size()) return true;
  writeError_ = errno;
  return false;
}

uint64_t RasterPassage::move(uint64_t bytes) noexcept {
  uint64_t done = 0;
  while (done < bytes && !failed()) {
    const bool held = begin_ < end_;
    uint64_t moved = inKernel_ && !held ? moveInKernel(bytes - done) : 0;
    if (moved == 0) moved = moveByHand(bytes - done);
    if (moved == 0) break;
    done += moved;
  }
  return done;
}

// Pages of a pipe go over without being copied; it wants a pipe on one side. 0 at the end of
// the input, and where the kernel cannot or finds nothing ready: read() then says which.
uint64_t RasterPassage::moveInKernel(uint64_t bytes) noexcept {
  constexpr uint64_t kMostAtOnce = uint64_t{1} << 20U;
  const auto most = static_cast<size_t>(std::min(bytes, kMostAtOnce));
  for (;;) {
    const ssize_t n = splice(from_, nullptr, to_, nullptr, most, SPLICE_F_MOVE);
    if (n > 0) return static_cast<uint64_t>(n);
    if (n < 0 && errno == EINTR) continue;
    inKernel_ = false;
    return 0;
  }
}

size_t RasterPassage::moveByHand(uint64_t most) noexcept {
  const size_t n = static_cast<size_t>(std::min<uint64_t>(next().size(), most));
  return n > 0 && pass(n) ? n : 0;
}

std::span<const uint8_t> RasterPassage::next() noexcept {
  if (begin_ == end_ && readError_ == 0) {
    const ssize_t n = readWaiting(from_, piece_);
    if (n < 0) readError_ = errno;
    begin_ = 0;
    end_ = n > 0 ? static_cast<size_t>(n) : 0;
  }
  return std::span(piece_).subspan(begin_, end_ - begin_);
}

bool RasterPassage::pass(size_t bytes) noexcept {
  const size_t n = std::min(bytes, end_ - begin_);
  const bool written = write(std::span(piece_).subspan(begin_, n));
  begin_ += n;
  return written;
}

void RasterPassage::awaitEndOfReader() const noexcept {
  constexpr int kMostMilliseconds = 1000;
  pollfd output = {to_, 0, 0};
  poll(&output, 1, kMostMilliseconds);
}

void RasterPassage::moveRest() noexcept {
  while (move(std::numeric_limits<uint64_t>::max()) > 0 && !failed()) {
  }
}

}  // namespace velka
