// The raster's way from the filter before us to the printing filter.
#pragma once

#include <array>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <span>

namespace velka {

/// What comes in goes out, in order and unchanged. At most one piece of it is held back, until
/// its reader has said how much of that may go.
class RasterPassage {
 public:
  RasterPassage(int from, int to) noexcept : from_(from), to_(to) {}

  /// Waits until there is something to read, or the input has ended; false where the flag is
  /// set, which a handler of SIGTERM does, before or meanwhile.
  [[nodiscard]] bool waits(const volatile std::sig_atomic_t& cancelled) const noexcept;

  /// Reads into `bytes` as many as it holds, fewer only where the input ends or fails.
  [[nodiscard]] size_t read(std::span<uint8_t> bytes) noexcept;

  /// Writes what was read.
  [[nodiscard]] bool write(std::span<const uint8_t> bytes) noexcept;

  /// Passes so many bytes on without a look, and returns how many there were: fewer where the
  /// input ends or fails, or the output does.
  [[nodiscard]] uint64_t move(uint64_t bytes) noexcept;

  /// What comes next, read ahead and not passed on; empty where the input ends or fails.
  [[nodiscard]] std::span<const uint8_t> next() noexcept;

  /// Passes the first bytes of next() on.
  [[nodiscard]] bool pass(size_t bytes) noexcept;

  /// All that is left.
  void moveRest() noexcept;

  /// Waits until nobody reads the output any more, a second at most.
  void awaitEndOfReader() const noexcept;

  /// The errno of the read or write that failed; 0 where none did.
  [[nodiscard]] int readError() const noexcept { return readError_; }
  [[nodiscard]] int writeError() const noexcept { return writeError_; }
  [[nodiscard]] bool failed() const noexcept { return readError_ != 0 || writeError_ != 0; }

 private:
  static constexpr size_t kPiece = 65536;

  [[nodiscard]] uint64_t moveInKernel(uint64_t bytes) noexcept;
  [[nodiscard]] size_t moveByHand(uint64_t most) noexcept;

  int from_;
  int to_;
  int readError_ = 0;
  int writeError_ = 0;
  bool inKernel_ = true;  // until the kernel says that it cannot
  std::array<uint8_t, kPiece> piece_ = {};
  size_t begin_ = 0;
  size_t end_ = 0;
};

}  // namespace velka
