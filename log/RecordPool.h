// Free records kept for the next lines, so that a line costs no allocation.
#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>

#include "LogData.h"
#include "LogThreading.h"

namespace velka {

/// Has a lock of its own, never held while another one is taken.
class RecordPool {
 public:
  using Allocate = void* (*)(std::size_t);
  /// Idle records kept at most.
  static constexpr std::size_t kMaxIdle = 200;

  /// `allocate` must give memory that std::free takes.
  explicit RecordPool(Allocate allocate = std::malloc) noexcept : allocate_(allocate) {}
  ~RecordPool() { clear(); }
  RecordPool(const RecordPool&) = delete;
  RecordPool& operator=(const RecordPool&) = delete;

  /// The record given back last, as it was, or a new one with a zeroed header.
  /// Ends the process when there is no memory.
  [[nodiscard]] LogData* take() noexcept;
  /// Keeps the record, or frees it when enough are kept; null does nothing.
  void giveBack(LogData* record) noexcept;
  /// Frees the idle records.
  void clear() noexcept;
  [[nodiscard]] std::size_t idle() noexcept;

 private:
  [[nodiscard]] LogData* takeIdle() noexcept;

  Allocate allocate_;
  LockHelper lock_;
  std::array<LogData*, kMaxIdle> idle_{};
  std::size_t count_ = 0;  // of the idle ones
};

}  // namespace velka
